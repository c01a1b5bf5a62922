#include "support/ResourceCounter.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <set>
#include <type_traits>

namespace {

// What the replaced calls of the one living counter have recorded, by kind.
std::recursive_mutex s_lock;
std::map<std::string, std::set<const void*>> s_alive;
std::map<std::string, int> s_created;

void Note(bool isCreated, const char* kind, const void* handle) {
    const std::lock_guard guard(s_lock);
    s_alive[kind].erase(handle);
    if (isCreated) s_alive[kind].insert(handle);
    s_created[kind] += isCreated ? 1 : 0;
}

struct Call {
    const char* name;
    void* replacement;
};

// The handle is the result, or what was written through the last pointer of its type, or the last argument of its type.
// The tag is a lambda, so that each line of the table below has a function, and with it static data, of its own.
template <class Handle, class Tag, class Result, class... Arguments>
Call Watch(bool creates, const char* kindName, const char* callName, Result(WINAPI* real)(Arguments...), Tag) {
    static bool s_creates;
    static const char* s_kind;
    static Result(WINAPI * s_real)(Arguments...);
    s_creates = creates, s_kind = kindName, s_real = real;
    Result(WINAPI * replacement)(Arguments...) = [](Arguments... arguments) -> Result {
        const Result result = s_real(arguments...);
        const DWORD error = GetLastError();
        if ((result == Result{}) != std::is_same_v<Result, LSTATUS>) return result;  // it failed
        const void* handle = nullptr;
        const auto look = [&handle](auto argument) {
            if constexpr (std::is_same_v<decltype(argument), Handle>) handle = argument;
            if constexpr (std::is_same_v<decltype(argument), Handle*>) handle = *argument;
            if constexpr (std::is_same_v<decltype(argument), SHFILEINFOW*>) handle = argument->hIcon;
        };
        (look(arguments), ...);
        if constexpr (std::is_pointer_v<Result>) handle = result;
        Note(s_creates, s_kind, handle);
        SetLastError(error);
        return result;
    };
    return {callName, reinterpret_cast<void*>(replacement)};
}

#define CREATES(handle, kind, call) Watch<handle>(true, kind, #call, &call, [] {})
#define ENDS(handle, kind, call) Watch<handle>(false, kind, #call, &call, [] {})

std::vector<Call> Calls() {
    return {
        CREATES(HWND, "window", CreateWindowExW),
        CREATES(HWND, "window", CreateDialogIndirectParamW),
        ENDS(HWND, "window", DestroyWindow),
        CREATES(HBRUSH, "gdi object", CreateSolidBrush),
        CREATES(HFONT, "gdi object", CreateFontIndirectW),
        CREATES(HBITMAP, "gdi object", CreateBitmap),
        CREATES(HBITMAP, "gdi object", CreateCompatibleBitmap),
        CREATES(HBITMAP, "gdi object", CreateDIBSection),
        ENDS(HGDIOBJ, "gdi object", DeleteObject),
        CREATES(HDC, "memory dc", CreateCompatibleDC),
        ENDS(HDC, "memory dc", DeleteDC),
        CREATES(HDC, "window dc", GetDC),
        CREATES(HDC, "window dc", GetWindowDC),
        ENDS(HDC, "window dc", ReleaseDC),
        CREATES(HIMAGELIST, "image list", ImageList_Create),
        CREATES(HIMAGELIST, "image list", ImageList_Duplicate),
        ENDS(HIMAGELIST, "image list", ImageList_Destroy),
        ENDS(HICON, "icon", DestroyIcon),
        CREATES(HICON, "icon", SHGetFileInfoW),
        CREATES(HHOOK, "hook", SetWindowsHookExW),
        ENDS(HHOOK, "hook", UnhookWindowsHookEx),
        CREATES(HKEY, "registry handle", RegOpenKeyExW),
        CREATES(HKEY, "registry handle", RegOpenKeyW),
        CREATES(HKEY, "registry handle", RegCreateKeyExW),
        ENDS(HKEY, "registry handle", RegCloseKey),
    };
}

}  // namespace

ResourceCounter::ResourceCounter(const std::vector<HMODULE>& modules) {
    s_alive.clear();
    s_created.clear();
    for (const Call& call : Calls()) {
        for (const HMODULE module : modules) {
            if (FindImportSlot(module, call.name) != nullptr)
                m_patches.push_back(std::make_unique<ImportSlot>(module, call.name, call.replacement));
        }
    }
}

int ResourceCounter::Created(const std::string& kind) const {
    const std::lock_guard guard(s_lock);
    return s_created[kind];
}

int ResourceCounter::Alive(const std::string& kind) const {
    const std::lock_guard guard(s_lock);
    const auto& handles = s_alive[kind];
    return static_cast<int>(std::count_if(handles.begin(), handles.end(), [&](const void* handle) {
        return kind != "window" || IsWindow(static_cast<HWND>(const_cast<void*>(handle)));
    }));
}

std::string ResourceCounter::Report() const {
    const std::lock_guard guard(s_lock);
    std::string report;
    for (const auto& [kind, handles] : s_alive)
        if (const int alive = Alive(kind)) report += kind + ": " + std::to_string(alive) + " alive\n";
    return report;
}
