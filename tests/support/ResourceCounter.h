// Counts what a set of modules creates and destroys by imported calls, as long as the object lives:
//
//     ResourceCounter counter({LoadedModule(L"RegistryRulesFramework.dll"), LoadedModule(L"RegistryRules.dll")});
//     for (int i = 0; i < 200; ++i) OpenAndEnd();
//     EXPECT_GE(counter.Created("window"), 200);
//     EXPECT_EQ(counter.Report(), "");
//
// Kinds: window, gdi object, memory dc, window dc, image list, icon, hook, registry handle. A window counts as
// alive until it is gone, whoever destroyed it. One counter at a time.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/ImportPatch.h"

class ResourceCounter {
public:
    explicit ResourceCounter(const std::vector<HMODULE>& modules);

    int Created(const std::string& kind) const;
    int Alive(const std::string& kind) const;
    // A line "KIND: N alive" for each kind of which something is; empty when all is gone.
    std::string Report() const;

private:
    std::vector<std::unique_ptr<ImportSlot>> m_patches;
};
