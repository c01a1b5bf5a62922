#include "support/ResourceCounter.h"

#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>

#include <map>
#include <mutex>
#include <stdexcept>
#include <tuple>
#include <type_traits>

namespace {

struct Origin {
    std::string kind;
    std::string call;
};

// What the replaced calls of the one living counter have recorded. Handles of different kinds may have equal values.
struct Record {
    std::mutex lock;
    std::map<std::pair<std::string, const void*>, Origin> alive;  // by family and handle
    std::map<std::string, int> created;                           // by kind
};

Record* s_record = nullptr;

void NoteCreated(const char* family, const char* kind, const char* call, const void* handle) {
    const std::lock_guard guard(s_record->lock);
    s_record->alive[{family, handle}] = {kind, call};
    ++s_record->created[kind];
}

void NoteDestroyed(const char* family, const void* handle) {
    const std::lock_guard guard(s_record->lock);
    s_record->alive.erase({family, handle});
}

template <class Result>
bool Succeeded(Result result) {
    if constexpr (std::is_same_v<Result, LSTATUS>) {
        return result == ERROR_SUCCESS;
    } else {
        return result != Result{};
    }
}

// One replaced call, with what to put in its place.
struct Call {
    const char* name;
    void* replacement;
};

// The handle that a creating call gave: its result, or what it wrote through the last pointer of the wanted type.
template <class Handle, class Result, class... Arguments>
const void* CreatedHandle(Result result, Arguments... arguments) {
    if constexpr (std::is_pointer_v<Result>) {
        return reinterpret_cast<const void*>(result);
    } else {
        const void* handle = nullptr;
        const auto look = [&](auto argument) {
            if constexpr (std::is_same_v<decltype(argument), Handle*>) handle = *argument;
        };
        (look(arguments), ...);
        return handle;
    }
}

// The handle that a destroying call took: its last argument of that type.
template <class Handle, class... Arguments>
const void* DestroyedHandle(Arguments... arguments) {
    const void* handle = nullptr;
    const auto look = [&](auto argument) {
        if constexpr (std::is_same_v<decltype(argument), Handle>) handle = argument;
    };
    (look(arguments), ...);
    return handle;
}

// The tag is a lambda, so that each line of the table below has a function, and with it static data, of its own.
template <class Handle, class Tag, class Result, class... Arguments>
Call Creates(const char* familyName, const char* kindName, const char* callName, Result(WINAPI* real)(Arguments...),
             Tag) {
    static const char *family, *kind, *call;
    static Result(WINAPI * original)(Arguments...);
    family = familyName, kind = kindName, call = callName, original = real;
    Result(WINAPI * replacement)(Arguments...) = [](Arguments... arguments) -> Result {
        const Result result = original(arguments...);
        const DWORD error = GetLastError();
        if (Succeeded(result)) NoteCreated(family, kind, call, CreatedHandle<Handle>(result, arguments...));
        SetLastError(error);
        return result;
    };
    return {callName, reinterpret_cast<void*>(replacement)};
}

template <class Handle, class Tag, class Result, class... Arguments>
Call Destroys(const char* familyName, const char* callName, Result(WINAPI* real)(Arguments...), Tag) {
    static const char* family;
    static Result(WINAPI * original)(Arguments...);
    family = familyName, original = real;
    Result(WINAPI * replacement)(Arguments...) = [](Arguments... arguments) -> Result {
        const Result result = original(arguments...);
        const DWORD error = GetLastError();
        if (Succeeded(result)) NoteDestroyed(family, DestroyedHandle<Handle>(arguments...));
        SetLastError(error);
        return result;
    };
    return {callName, reinterpret_cast<void*>(replacement)};
}

// Shared images are the system's and are never destroyed.
HANDLE WINAPI CountedLoadImage(HINSTANCE instance, LPCWSTR name, UINT type, int width, int height, UINT flags) {
    const HANDLE image = LoadImageW(instance, name, type, width, height, flags);
    if (image != nullptr && (flags & LR_SHARED) == 0) {
        const bool isBitmap = type == IMAGE_BITMAP;
        NoteCreated(isBitmap ? "gdi" : "icon", isBitmap ? "bitmap" : "icon", "LoadImageW", image);
    }
    return image;
}

DWORD_PTR WINAPI CountedGetFileInfo(LPCWSTR path, DWORD attributes, SHFILEINFOW* info, UINT bytes, UINT flags) {
    const DWORD_PTR result = SHGetFileInfoW(path, attributes, info, bytes, flags);
    if (result != 0 && info != nullptr && (flags & SHGFI_ICON) != 0) {
        NoteCreated("icon", "icon", "SHGetFileInfoW", info->hIcon);
    }
    return result;
}

#define CREATES(handle, family, kind, call) Creates<handle>(family, kind, #call, &call, [] {})
#define DESTROYS(handle, family, call) Destroys<handle>(family, #call, &call, [] {})

std::vector<Call> Calls() {
    return {
        CREATES(HWND, "window", "window", CreateWindowExW),
        CREATES(HWND, "window", "window", CreateDialogParamW),
        CREATES(HWND, "window", "window", CreateDialogIndirectParamW),
        DESTROYS(HWND, "window", DestroyWindow),
        CREATES(HBRUSH, "gdi", "brush", CreateSolidBrush),
        CREATES(HBRUSH, "gdi", "brush", CreateBrushIndirect),
        CREATES(HBRUSH, "gdi", "brush", CreatePatternBrush),
        CREATES(HFONT, "gdi", "font", CreateFontW),
        CREATES(HFONT, "gdi", "font", CreateFontIndirectW),
        CREATES(HPEN, "gdi", "pen", CreatePen),
        CREATES(HPEN, "gdi", "pen", CreatePenIndirect),
        CREATES(HBITMAP, "gdi", "bitmap", CreateBitmap),
        CREATES(HBITMAP, "gdi", "bitmap", CreateCompatibleBitmap),
        CREATES(HBITMAP, "gdi", "bitmap", CreateDIBSection),
        CREATES(HBITMAP, "gdi", "bitmap", LoadBitmapW),
        CREATES(HRGN, "gdi", "region", CreateRectRgn),
        CREATES(HRGN, "gdi", "region", CreateRectRgnIndirect),
        CREATES(HPALETTE, "gdi", "palette", CreatePalette),
        DESTROYS(HGDIOBJ, "gdi", DeleteObject),
        CREATES(HDC, "memory dc", "memory dc", CreateCompatibleDC),
        CREATES(HDC, "memory dc", "memory dc", CreateDCW),
        DESTROYS(HDC, "memory dc", DeleteDC),
        CREATES(HDC, "window dc", "window dc", GetDC),
        CREATES(HDC, "window dc", "window dc", GetDCEx),
        CREATES(HDC, "window dc", "window dc", GetWindowDC),
        DESTROYS(HDC, "window dc", ReleaseDC),
        CREATES(HIMAGELIST, "image list", "image list", ImageList_Create),
        CREATES(HIMAGELIST, "image list", "image list", ImageList_LoadImageW),
        CREATES(HIMAGELIST, "image list", "image list", ImageList_Duplicate),
        CREATES(HIMAGELIST, "image list", "image list", ImageList_Merge),
        DESTROYS(HIMAGELIST, "image list", ImageList_Destroy),
        CREATES(HICON, "icon", "icon", CreateIcon),
        CREATES(HICON, "icon", "icon", CreateIconIndirect),
        CREATES(HICON, "icon", "icon", CreateIconFromResourceEx),
        CREATES(HICON, "icon", "icon", CopyIcon),
        CREATES(HICON, "icon", "icon", ExtractIconW),
        CREATES(HICON, "icon", "icon", ImageList_GetIcon),
        {"LoadImageW", reinterpret_cast<void*>(CountedLoadImage)},
        {"SHGetFileInfoW", reinterpret_cast<void*>(CountedGetFileInfo)},
        DESTROYS(HICON, "icon", DestroyIcon),
        CREATES(HMENU, "menu", "menu", CreateMenu),
        CREATES(HMENU, "menu", "menu", CreatePopupMenu),
        CREATES(HMENU, "menu", "menu", LoadMenuW),
        DESTROYS(HMENU, "menu", DestroyMenu),
        CREATES(HHOOK, "hook", "hook", SetWindowsHookExW),
        DESTROYS(HHOOK, "hook", UnhookWindowsHookEx),
        CREATES(HKEY, "registry handle", "registry handle", RegOpenKeyExW),
        CREATES(HKEY, "registry handle", "registry handle", RegOpenKeyW),
        CREATES(HKEY, "registry handle", "registry handle", RegCreateKeyExW),
        CREATES(HKEY, "registry handle", "registry handle", RegCreateKeyW),
        CREATES(HKEY, "registry handle", "registry handle", RegConnectRegistryW),
        DESTROYS(HKEY, "registry handle", RegCloseKey),
    };
}

#undef CREATES
#undef DESTROYS

// A window that its parent, or a closing of its own, destroyed.
bool IsGone(const std::string& family, const void* handle) {
    return family == "window" && !IsWindow(static_cast<HWND>(const_cast<void*>(handle)));
}

}  // namespace

ResourceCounter::ResourceCounter(const std::vector<HMODULE>& modules) {
    if (s_record != nullptr) throw std::logic_error("one ResourceCounter at a time");
    s_record = new Record;
    for (const Call& call : Calls()) {
        for (const HMODULE module : modules) {
            if (FindImportSlot(module, call.name) != nullptr) {
                m_patches.push_back(std::make_unique<ImportSlot>(module, call.name, call.replacement));
            }
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
    const auto found = s_record->created.find(kind);
    return found != s_record->created.end() ? found->second : 0;
}

int ResourceCounter::Alive(const std::string& kind) const {
    const std::lock_guard guard(s_record->lock);
    int count = 0;
    for (const auto& [key, origin] : s_record->alive) {
        if (origin.kind == kind && !IsGone(key.first, key.second)) ++count;
    }
    return count;
}

std::string ResourceCounter::Report() const {
    const std::lock_guard guard(s_record->lock);
    std::map<std::pair<std::string, std::string>, int> counts;
    for (const auto& [key, origin] : s_record->alive) {
        if (!IsGone(key.first, key.second)) ++counts[{origin.kind, origin.call}];
    }
    std::string report;
    for (const auto& [origin, count] : counts) {
        report += origin.first + ": " + std::to_string(count) + " alive by " + origin.second + "\n";
    }
    return report;
}
