#include "support/Screenshot.h"

#include <windows.h>
#include <objidl.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

// gdiplus.h wants its min and max, which windows.h was told to leave out.
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include "support/Narrow.h"

namespace {

constexpr CLSID kPngEncoder{0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};

class GdiplusSession {
public:
    GdiplusSession() {
        Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&m_token, &input, nullptr);
    }
    ~GdiplusSession() { Gdiplus::GdiplusShutdown(m_token); }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

private:
    ULONG_PTR m_token = 0;
};

struct BitmapCloser {
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using UniqueBitmap = std::unique_ptr<std::remove_pointer_t<HBITMAP>, BitmapCloser>;

UniqueBitmap CopyOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const HDC source = GetWindowDC(window);
    const HDC target = CreateCompatibleDC(source);
    UniqueBitmap bitmap(CreateCompatibleBitmap(source, width, height));
    const HGDIOBJ before = SelectObject(target, bitmap.get());
    BitBlt(target, 0, 0, width, height, source, 0, 0, SRCCOPY);
    SelectObject(target, before);
    DeleteDC(target);
    ReleaseDC(window, source);
    return bitmap;
}

}  // namespace

void SaveScreenshot(HWND window, const std::wstring& path) {
    const GdiplusSession session;
    // A dialog that opened while nothing of the process was in front keeps a grey caption under Wine 8.
    SendMessageW(window, WM_NCACTIVATE, TRUE, 0);
    RedrawWindow(window, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const UniqueBitmap bitmap = CopyOf(window);
    Gdiplus::Bitmap image(bitmap.get(), nullptr);
    if (image.Save(path.c_str(), &kPngEncoder, nullptr) != Gdiplus::Ok) {
        throw std::runtime_error("writing " + Narrow(path));
    }
}
