#include "support/ResourceCounter.h"

#include <commctrl.h>
#include <shellapi.h>

#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <type_traits>

namespace {

// What the replaced calls of the one living counter have recorded, by kind.
struct Record {
    std::mutex lock;
    std::map<std::string, std::set<const void*>> alive;
    std::map<std::string, int> created;
};

Record* s_record = nullptr;

void Note(bool isCreated, const char* kind, const void* handle) {
    const std::lock_guard guard(s_record->lock);
    s_record->alive[kind].erase(handle);
    if (isCreated) s_record->alive[kind].insert(handle);
    s_record->created[kind] += isCreated ? 1 : 0;
}

struct Call {
    const char* name;
    void* replacement;
};

// The handle is the result, or what was written through the last pointer of its type, or the last argument of its type.
// The tag is a lambda, so that each line of the table below has a function, and with it static data, of its own.
template <class Handle, class Tag, class Result, class... Arguments>
Call Watch(bool creates, const char* kindName, const char* callName, Result(WINAPI* real)(Arguments...), Tag) {
    static const char* kind;
    static bool isCreating;
    static Result(WINAPI * original)(Arguments...);
    kind = kindName, isCreating = creates, original = real;
    Result(WINAPI * replacement)(Arguments...) = [](Arguments... arguments) -> Result {
        const Result result = original(arguments...);
        const DWORD error = GetLastError();
        if (std::is_same_v<Result, LSTATUS> ? result != Result{} : result == Result{}) return result;
        const void* handle = nullptr;
        const auto look = [&handle](auto argument) {
            if constexpr (std::is_same_v<decltype(argument), Handle>) handle = argument;
            if constexpr (std::is_same_v<decltype(argument), Handle*>) handle = *argument;
        };
        (look(arguments), ...);
        if constexpr (std::is_pointer_v<Result>) handle = result;
        Note(isCreating, kind, handle);
        SetLastError(error);
        return result;
    };
    return {callName, reinterpret_cast<void*>(replacement)};
}

DWORD_PTR WINAPI WatchedGetFileInfo(LPCWSTR path, DWORD attributes, SHFILEINFOW* info, UINT bytes, UINT flags) {
    const DWORD_PTR result = SHGetFileInfoW(path, attributes, info, bytes, flags);
    if (result != 0 && (flags & SHGFI_ICON) != 0) Note(true, "icon", info->hIcon);
    return result;
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
        {"SHGetFileInfoW", reinterpret_cast<void*>(WatchedGetFileInfo)},
        CREATES(HHOOK, "hook", SetWindowsHookExW),
        ENDS(HHOOK, "hook", UnhookWindowsHookEx),
        CREATES(HKEY, "registry handle", RegOpenKeyExW),
        CREATES(HKEY, "registry handle", RegOpenKeyW),
        CREATES(HKEY, "registry handle", RegCreateKeyExW),
        ENDS(HKEY, "registry handle", RegCloseKey),
    };
}

#undef CREATES
#undef ENDS

}  // namespace

ResourceCounter::ResourceCounter(const std::vector<HMODULE>& modules) {
    if (s_record != nullptr) throw std::logic_error("one ResourceCounter at a time");
    s_record = new Record;
    for (const Call& call : Calls()) {
        for (const HMODULE module : modules) {
            if (FindImportSlot(module, call.name) != nullptr)
                m_patches.push_back(std::make_unique<ImportSlot>(module, call.name, call.replacement));
        }
    }
}

ResourceCounter::~ResourceCounter() {
    m_patches.clear();
    delete s_record;
    s_record = nullptr;
}

int ResourceCounter::Created(const std::string& kind) const {
    const std::lock_guard guard(s_record->lock);
    return s_record->created[kind];
}

int ResourceCounter::Alive(const std::string& kind) const {
    const std::lock_guard guard(s_record->lock);
    int count = 0;
    for (const void* handle : s_record->alive[kind])
        count += kind != "window" || IsWindow(static_cast<HWND>(const_cast<void*>(handle))) ? 1 : 0;
    return count;
}

std::string ResourceCounter::Report() const {
    std::string report;
    for (const auto& [kind, created] : s_record->created)
        if (const int alive = Alive(kind)) report += kind + ": " + std::to_string(alive) + " alive\n";
    return report;
}
