#include "dialog/DragImage.h"

#include <algorithm>
#include <memory>

namespace {
constexpr int iconGap = 3;        // pixels between icon and text
constexpr int widestImage = 512;  // pixels; a longer text is cut

struct ItemLook {
    HIMAGELIST icons;
    int iconIndex;
    CSize iconSize;
    CString text;
    CFont* font;
    CSize imageSize;
};

ItemLook LookOf(CTreeCtrl& tree, HTREEITEM item, CDC& dc) {
    ItemLook look{};
    int selectedIndex = 0;
    tree.GetItemImage(item, look.iconIndex, selectedIndex);
    look.icons = reinterpret_cast<HIMAGELIST>(tree.SendMessage(TVM_GETIMAGELIST, TVSIL_NORMAL));
    int width = 0;
    int height = 0;
    if (ImageList_GetIconSize(look.icons, &width, &height)) look.iconSize = CSize(width, height);
    look.text = tree.GetItemText(item);
    look.font = tree.GetFont();
    CFont* const previous = dc.SelectObject(look.font);
    const CSize textSize = dc.GetTextExtent(look.text);
    dc.SelectObject(previous);
    look.imageSize = CSize(std::clamp<int>(look.iconSize.cx + iconGap + textSize.cx, 1, widestImage),
                           std::max({look.iconSize.cy, textSize.cy, 1L}));
    return look;
}

// The item on the colour that becomes transparent.
void DrawItem(CDC& dc, const ItemLook& look, COLORREF transparent) {
    const CRect whole(CPoint(0, 0), look.imageSize);
    dc.FillSolidRect(&whole, transparent);
    ImageList_Draw(look.icons, look.iconIndex, dc.GetSafeHdc(), 0, (look.imageSize.cy - look.iconSize.cy) / 2,
                   ILD_TRANSPARENT);
    CFont* const previous = dc.SelectObject(look.font);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(GetSysColor(COLOR_WINDOWTEXT));
    CRect textRect = whole;
    textRect.left += look.iconSize.cx + iconGap;
    DrawTextW(dc.GetSafeHdc(), look.text, look.text.GetLength(), &textRect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    dc.SelectObject(previous);
}

std::unique_ptr<CImageList> DrawDragImage(CTreeCtrl& tree, HTREEITEM item) {
    CClientDC screen(&tree);
    const ItemLook look = LookOf(tree, item, screen);
    CDC memory;
    CBitmap bitmap;
    if (!memory.CreateCompatibleDC(&screen)) return nullptr;
    if (!bitmap.CreateCompatibleBitmap(&screen, look.imageSize.cx, look.imageSize.cy)) return nullptr;
    const COLORREF transparent = GetSysColor(COLOR_WINDOW);
    CBitmap* const previous = memory.SelectObject(&bitmap);
    DrawItem(memory, look, transparent);
    memory.SelectObject(previous);
    auto image = std::make_unique<CImageList>();
    if (!image->Create(look.imageSize.cx, look.imageSize.cy, ILC_COLOR24 | ILC_MASK, 1, 1)) return nullptr;
    if (image->Add(&bitmap, transparent) == -1) return nullptr;
    return image;
}
}  // namespace

CImageList* MakeDragImage(CTreeCtrl& tree, HTREEITEM item) {
    std::unique_ptr<CImageList> image(tree.CreateDragImage(item));
    // Wine 8's tree gives a list of the right size without an image in it, which no drag can begin with.
    if (image != nullptr && image->GetImageCount() == 0) image = DrawDragImage(tree, item);
    return image.release();
}
