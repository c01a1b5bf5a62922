#include "controls/TreePath.h"

std::wstring ChildPath(std::wstring_view path, std::wstring_view name) {
    std::wstring child(path);
    if (!child.empty()) {
        child += L'\\';
    }
    return child += name;
}

std::wstring PathThrough(std::wstring_view name, std::wstring_view path) {
    std::wstring through(name);
    if (!path.empty()) {
        through += L'\\';
        through += path;
    }
    return through;
}
