// Whole files as text. Failures are thrown as std::system_error with the Win32 status, or as std::runtime_error where
// the system has no status for them; the text is one line.
#pragma once

#include <optional>
#include <string>

// The bytes of the file; nothing if there is no file of that name. Files above 64 MiB fail.
std::optional<std::string> ReadFileText(const std::wstring& path);

// Puts the text in the file's place in one step, so that a failure leaves the old file whole; the file need not exist,
// its folder must. Fails also when the file no longer holds `before`, which was read from it (nothing: there was none),
// and when it is read-only.
void ReplaceFileText(const std::wstring& path, const std::optional<std::string>& before, const std::string& text);

// Writes the text to a new file beside `path` or, if that fails, in the folder for temporary files: NAME.unsaved-1.json
// or the next number that is free, NAME being that of `path` without its extension. Gives the new file's path; an empty
// one when it could be written nowhere. What could be written only in part is removed.
std::wstring WriteUnsavedText(const std::wstring& path, const std::string& text);
