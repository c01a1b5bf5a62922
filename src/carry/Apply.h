// Carries out a registry file, and keeps what is needed to take it back:
//
//     RegistryTarget target;
//     Apply(target, L"C:\\settings.reg", {.undoFile = L"C:\\undo.reg"});
//     Apply(target, L"C:\\undo.reg", {});    // as it was before
//
// The file is read three times. The first time says whether it is one, and what in it is refused; the second writes the
// undo file to the disk; only the third changes the registry. When a change fails, the undo file is applied at once.
// When the process ends in between, it lies there to be applied.
#pragma once

#include "carry/CarryReport.h"
#include "carry/RegistryTarget.h"

struct ApplyOptions {
    std::wstring undoFile{};   // empty: none is written, and nothing can be taken back
    bool replaceFile = false;  // an undo file that exists is refused otherwise
    bool dryRun = false;       // only the first reading
    // Removals of a hive or of the root of one, such as [-HKEY_LOCAL_MACHINE\SOFTWARE], are refused otherwise.
    bool removeHives = false;
    // Before the changes begin it is called, too, with nothing done and the path that is looked at.
    CarryProgressFunction progress{};
};

// Throws CarryException. Lines that the reader passes over are told in the report.
CarryReport Apply(RegistryTarget& target, const std::wstring& file, const ApplyOptions& options);
