// What RulesProbe asks the system, one row for each difference between Windows and Wine that a program can see by
// itself. The numbers are those of docs/wine-and-windows.md.
#pragma once

#include <windows.h>

#include <span>
#include <string>

// The folder and the key that the probe may fill: both are made for one run and go with it.
struct ProbePlace {
    std::wstring folder;  // without a backslash at its end
    HKEY key = nullptr;

    std::wstring File(const wchar_t* name) const { return folder + L'\\' + name; }
};

struct ProbeRow {
    int number;
    const char* question;
    // What is seen. Throws std::runtime_error when the question cannot be asked.
    std::string (*look)(const ProbePlace& place);
    // What the library can work with: as Windows is documented or believed to answer, and as Wine was seen to. Null for
    // a row that only tells.
    const char* windows;
    const char* wine;
};

std::span<const ProbeRow> ControlRows();
std::span<const ProbeRow> FileRows();
std::span<const ProbeRow> SystemRows();

// "yes", or "no (5)" with the last error.
std::string YesOrStatus(bool isDone);
