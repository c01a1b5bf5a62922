// Registry paths below a predefined root key: names joined by backslashes, without the root's own name; empty is the
// root itself.
#pragma once

#include <string>
#include <string_view>

// The path of the subkey `name` of the key at `path`.
std::wstring ChildPath(std::wstring_view path, std::wstring_view name);

// The path that leads through `name` to what `path` says. An empty path adds no backslash, so a value with the empty
// name (a key's default value) has the path of its key.
std::wstring PathThrough(std::wstring_view name, std::wstring_view path);
