// The five hives and the conversions between the spellings of a key path, `<hive>` or `<hive>\<subkey>`.
//
// Full names and abbreviations are resource texts, so the table is an argument; entry/HiveText.h offers the same
// operations over the library's own texts. Letter case is folded for A to Z only: the names are plain ASCII.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

struct Hive {
    std::uint32_t rootKey;  // the low 32 bits of the predefined key handle
    std::wstring fullName;
    std::wstring abbreviation;
};

// In the order in which every conversion walks the hives: classes root, current user, local machine, users, current
// configuration.
using HiveTable = std::array<Hive, 5>;

inline constexpr std::uint32_t ROOT_CLASSES_ROOT = 0x80000000;
inline constexpr std::uint32_t ROOT_CURRENT_USER = 0x80000001;
inline constexpr std::uint32_t ROOT_LOCAL_MACHINE = 0x80000002;
inline constexpr std::uint32_t ROOT_USERS = 0x80000003;
inline constexpr std::uint32_t ROOT_CURRENT_CONFIG = 0x80000005;

// The path with a leading full hive name, in any letter case, replaced by its abbreviation. Only the leading letters
// count, not what follows them: the paths that arrive here have passed the key check.
std::wstring AbbreviateHive(std::wstring_view path, const HiveTable& hives);

// The path with a leading abbreviation, in any letter case, in the spelling of the table.
std::wstring NormaliseAbbreviation(std::wstring_view path, const HiveTable& hives);

// The path with a leading abbreviation, in exactly the table's letter case, replaced by the full name. Letters of the
// abbreviation that follow it directly go with it: "HKCUCU" gives the full name alone.
std::wstring ExpandHive(std::wstring_view path, const HiveTable& hives);

// Abbreviation, backslash, subkey; an empty subkey leaves the backslash at the end. A root key without a row gives the
// subkey alone.
std::wstring MakeHivePath(std::uint32_t rootKey, std::wstring_view subkey, const HiveTable& hives);
