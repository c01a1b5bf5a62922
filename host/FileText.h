// Whole files as text. Failures are thrown as std::system_error with the Win32 status; its text is one line.
#pragma once

#include <optional>
#include <string>

// The bytes of the file; nothing if there is no file of that name. Files above 64 MiB fail.
std::optional<std::string> ReadFileText(const std::wstring& path);

// Writes the text beside the file and lets it take the file's place in one step, so that a failure leaves the old file
// whole. The file need not exist; its folder must.
void ReplaceFileText(const std::wstring& path, const std::string& text);
