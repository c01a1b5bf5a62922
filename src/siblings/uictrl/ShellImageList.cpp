#include "siblings/uictrl/ShellImageList.h"

#include <windows.h>
#include <shellapi.h>

namespace {

constexpr COLORREF kMask = RGB(255, 0, 255);
constexpr COLORREF kPaper = RGB(255, 216, 112);
constexpr COLORREF kOutline = RGB(152, 112, 24);

// The shell is asked once per process, for asking takes longer than all else about the pictures; the icon stays.
HICON FolderIcon() {
    static const HICON icon = [] {
        SHFILEINFOW info{};
        const DWORD_PTR found = ::SHGetFileInfoW(L"folder", FILE_ATTRIBUTE_DIRECTORY, &info, sizeof(info),
                                                 SHGFI_ICON | SHGFI_SMALLICON | SHGFI_USEFILEATTRIBUTES);
        return found != 0 ? info.hIcon : nullptr;
    }();
    return icon;
}

// A closed folder, drawn to fit the size.
void DrawFolder(CDC& dc, CSize size) {
    dc.FillSolidRect(CRect(CPoint(0, 0), size), kMask);
    const CRect tab(size.cx / 16, size.cy / 8, size.cx / 2, size.cy / 2);
    CRect body(size.cx / 16, size.cy / 4, size.cx - size.cx / 16, size.cy - size.cy / 8);
    dc.FillSolidRect(tab, kOutline);
    dc.FillSolidRect(body, kOutline);
    body.DeflateRect(1, 1);
    dc.FillSolidRect(body, kPaper);
}

int AddDrawnFolder(CImageList& list, CSize size) {
    CClientDC screen(nullptr);
    CDC memory;
    CBitmap bitmap;
    if (!memory.CreateCompatibleDC(&screen) || !bitmap.CreateCompatibleBitmap(&screen, size.cx, size.cy)) return -1;
    CBitmap* const previous = memory.SelectObject(&bitmap);
    DrawFolder(memory, size);
    memory.SelectObject(previous);
    return list.Add(&bitmap, kMask);
}

CSize SmallIconSize() {
    return {::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON)};
}

}  // namespace

BOOL CShellImageList::Initialize(int bitsPerPixel) {
    DeleteImageList();
    m_closedFolder = -1;
    // The ILC_COLOR... flags are the numbers of bits.
    return Create(SmallIconSize().cx, SmallIconSize().cy, static_cast<UINT>(bitsPerPixel) | ILC_MASK, 4, 4);
}

int CShellImageList::GetIconIndex(ShellIcons::ShellIconId id) {
    if (m_hImageList == nullptr || id != ShellIcons::ClosedFolder) return -1;
    if (m_closedFolder != -1) return m_closedFolder;
    if (FolderIcon() != nullptr) m_closedFolder = Add(FolderIcon());
    if (m_closedFolder == -1) m_closedFolder = AddDrawnFolder(*this, SmallIconSize());
    return m_closedFolder;
}
