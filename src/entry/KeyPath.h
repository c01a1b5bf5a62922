// Whether a key path that somebody typed may become a rule.
#pragma once

#include <optional>
#include <string_view>

#include "entry/HiveTable.h"

enum class KeyVerdict {
    KeyBlank,              // empty or the watermark: not a key, nothing to object to
    KeyAccepted,           // a rule may be made of it
    KeyUnknownHive,        // the part before the first backslash names no hive
    KeyBareHive,           // a hive without a subkey
    KeyTrailingBackslash,  // one or more at the end
    KeyMultipleBackslash,  // two backslashes in a row
};

// Half-open range of character indices. An end of -1 is the edit control's own way to say "to the end".
struct KeySelection {
    int start;
    int end;
    bool operator==(const KeySelection&) const = default;
};

struct KeyCheck {
    KeyVerdict verdict{};
    // The characters to correct; none when the selection is to stay as it is.
    std::optional<KeySelection> selection;
    bool operator==(const KeyCheck&) const = default;
};

// Decides on the text as it stands, untrimmed and of any length. Hives are recognised by full name and abbreviation in
// any letter case; the watermark is recognised exactly. The first objection wins, in the order of KeyVerdict.
KeyCheck CheckKeyPath(std::wstring_view text, std::wstring_view watermark, const HiveTable& hives);
