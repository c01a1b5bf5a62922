// Reading keys of the live registry, in the view of this process. Every failure shows as nothing to read.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>

struct KeyCloser {
    using pointer = HKEY;
    void operator()(HKEY key) const { RegCloseKey(key); }
};
using KeyHandle = std::unique_ptr<HKEY, KeyCloser>;

// The key at `path` below `rootKey`, open for reading; null if it cannot be opened.
KeyHandle OpenKeyForReading(HKEY rootKey, const wchar_t* path);

// True if the key has a subkey or, with `countValues`, a value.
bool HasChildren(HKEY key, bool countValues);

// Calls `visit` with the name of each subkey. Ends without a word at the first that cannot be read, be it for a name of
// more than 1023 characters.
void EnumerateSubkeys(HKEY key, const std::function<void(const wchar_t* name)>& visit);

// Calls `visit` with name and type of each value, the default value's name being empty. The names come in `buffer`,
// which is made anew for the key's longest name. Ends without a word at the first value that cannot be read.
void EnumerateValues(HKEY key, std::unique_ptr<wchar_t[]>& buffer,
                     const std::function<void(const wchar_t* name, DWORD type)>& visit);
