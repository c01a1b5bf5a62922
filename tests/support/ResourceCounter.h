// Counts what a set of modules creates and destroys (windows, GDI objects, image lists, icons, menus, hooks, device
// contexts, registry handles), by replaced imports, as long as the object lives:
//
//     ResourceCounter counter({LoadedModule(L"framework.dll"), LoadedModule(L"RegistryRules.dll")});
//     for (int i = 0; i < 200; ++i) OpenAndEnd();
//     EXPECT_GE(counter.Created("window"), 200);
//     EXPECT_EQ(counter.Report(), "");
//
// Seen is only what these modules do by imported calls of their own: an icon that the system frees for them stays
// counted, and a handle that was there before the counter is not. One counter at a time.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "support/ImportPatch.h"

class ResourceCounter {
public:
    explicit ResourceCounter(const std::vector<HMODULE>& modules);
    ~ResourceCounter();
    ResourceCounter(const ResourceCounter&) = delete;
    ResourceCounter& operator=(const ResourceCounter&) = delete;

    // How many of a kind were created so far, or are alive now; windows count as alive until they are gone, whoever
    // destroyed them. Kinds: window, brush, font, pen, bitmap, region, palette, memory dc, window dc, image list, icon,
    // menu, hook, registry handle.
    int Created(const std::string& kind) const;
    int Alive(const std::string& kind) const;
    // One line "KIND: N alive by CALL" for each kind and creating call with something alive; empty when all is gone.
    std::string Report() const;

private:
    std::vector<std::unique_ptr<ImportSlot>> m_patches;
};
