// The dialog's run-time geometry: the strip fitted to the font, and the gap between tree and list that the user drags.
#include "dialog/DialogGeometry.h"
#include "dialog/RegistryRulesDlg.h"
#include "helpers/CursorHelper.h"
#include "helpers/MeasureText.h"
#include "siblings/uictrl/LayoutConstants.h"

namespace {
geometry::Box ToBox(const CRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

CRect ToRect(const geometry::Box& box) {
    return {box.left, box.top, box.right, box.bottom};
}

// Capitals with marks and letters with descenders: as high as the font gets.
constexpr wchar_t fullHeightText[] = L"\u00C5\u00C4\u00D6gyjq";
}  // namespace

CRect CRegistryRulesDlg::ControlRect(int id) {
    CRect rect;
    GetDlgItem(id)->GetWindowRect(&rect);
    ScreenToClient(&rect);
    return rect;
}

void CRegistryRulesDlg::LayoutStrip() {
    CClientDC dc(this);
    CFont* const previous = GetFont() != nullptr ? dc.SelectObject(GetFont()) : nullptr;
    const CString sample(fullHeightText);
    const int fontHeight = MeasureText(&dc, &sample).cy;
    const int spacing = LayoutConstants::ControlSpacing.cy;
    const int minFrameHeight = geometry::MinFrameHeight(spacing, fontHeight);
    const int labelOffset = geometry::LabelOffset(spacing, fontHeight);

    LayoutHeaderCell(dc, IDC_TYPE_FRAME, IDC_TYPE_LABEL, minFrameHeight, labelOffset);
    LayoutHeaderCell(dc, IDC_KEY_FRAME, IDC_KEY_LABEL, minFrameHeight, labelOffset);
    const int y = LayoutHeaderCell(dc, IDC_VALUE_FRAME, IDC_VALUE_LABEL, minFrameHeight, labelOffset) + spacing;
    if (previous != nullptr) dc.SelectObject(previous);

    CRect listRect = ControlRect(IDC_RULE_LIST);
    listRect.top = MoveControlToY(IDC_NEW_TYPE, y) + spacing;
    MoveControlToY(IDC_NEW_KEY, y);
    MoveControlToY(IDC_NEW_VALUE, y);
    listRect.bottom = ControlRect(IDC_REGISTRY_TREE).bottom;
    m_ruleList.MoveWindow(&listRect);
}

int CRegistryRulesDlg::LayoutHeaderCell(CDC& dc, int frameId, int labelId, int minFrameHeight, int labelOffset) {
    CString text;
    GetDlgItem(labelId)->GetWindowText(text);
    const CRect frame = ControlRect(frameId);
    const geometry::HeaderCell cell = geometry::FitHeaderCell({ToBox(frame), ToBox(ControlRect(labelId))},
                                                              MeasureText(&dc, &text).cy, minFrameHeight, labelOffset);
    const CRect fittedFrame = ToRect(cell.frame);
    if (fittedFrame != frame) GetDlgItem(frameId)->MoveWindow(&fittedFrame);
    const CRect fittedLabel = ToRect(cell.label);
    GetDlgItem(labelId)->MoveWindow(&fittedLabel);
    return cell.frame.bottom;
}

int CRegistryRulesDlg::MoveControlToY(int id, int y) {
    const CRect moved = ToRect(geometry::MovedToTop(ToBox(ControlRect(id)), y));
    GetDlgItem(id)->MoveWindow(&moved);
    return moved.bottom;
}

void CRegistryRulesDlg::ComputeSplitterRect() {
    m_splitterRect =
        ToRect(geometry::SplitterBox(ToBox(ControlRect(IDC_REGISTRY_TREE)), ToBox(ControlRect(IDC_RULE_LIST))));
}

bool CRegistryRulesDlg::MoveSplitter(CPoint point) {
    const int delta = m_splitterPosX - point.x;
    m_splitterPosX = point.x;
    CRect strip;
    for (const geometry::SplitterFollower& follower : geometry::SplitterFollowers()) {
        const CRect before = ControlRect(follower.controlId);
        const CRect moved = ToRect(geometry::Follow(follower, ToBox(before), delta));
        CWnd* const control = GetDlgItem(follower.controlId);
        control->MoveWindow(&moved);
        control->InvalidateRect(nullptr, FALSE);
        control->UpdateWindow();
        if (follower.controlId == IDC_REGISTRY_TREE || follower.controlId == IDC_RULE_LIST) continue;
        ::UnionRect(&strip, &strip, &before);
        ::UnionRect(&strip, &strip, &moved);
    }
    // The frames of the heads do not paint their inside and carry along what another control has left there by then.
    RedrawWindow(&strip, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    // The tree's icons have soft edges, which grow darker when they are painted over themselves.
    GetDlgItem(IDC_REGISTRY_TREE)->RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    m_splitterRect.left -= delta;
    m_splitterRect.right -= delta;
    return true;
}

bool CRegistryRulesDlg::IsInSplitter(CPoint point) const {
    return geometry::Contains(ToBox(m_splitterRect), point.x, point.y);
}

void CRegistryRulesDlg::BeginSplitterDrag(CPoint point) {
    CursorHelper::SetSizeWECursor(true);
    m_splitterPosX = point.x;
    m_splitterActive = 1;
    SetCapture();
    CRect bounds;
    m_splitterBounds.GetWindowRect(&bounds);
    ClipCursor(&bounds);
}

void CRegistryRulesDlg::TrackSplitter(CPoint point) {
    if (m_splitterActive == 0) {
        if (IsInSplitter(point))
            CursorHelper::SetSizeWECursor(true);
        else
            CursorHelper::RestoreCursor();
    } else if (m_splitterIdle == 0) {
        // No move ever fails, so the idle state is never entered.
        if (!MoveSplitter(point)) m_splitterIdle = 1;
    } else if (IsInSplitter(point)) {
        m_splitterIdle = 0;
    }
}
