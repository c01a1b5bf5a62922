// The names of files and directories that a peer of the USB link sends, as text.
#pragma once

#include <string_view>

// Without the first element, such as a drive or the peer's top folder; whole if it has only one.
std::wstring_view UsbNameBelowTop(std::wstring_view name);

// Its second character is a colon.
bool UsbNameHasDrive(std::wstring_view name);

// Whether the name, put behind a directory, means something outside it: it begins with a drive or at a root, or has
// more steps up than down on the way. Elements of dots and blanks alone count as a step up from two dots on, whatever
// the system makes of them.
bool UsbNameLeavesDirectory(std::wstring_view name);
