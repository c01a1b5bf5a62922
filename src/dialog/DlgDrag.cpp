// The drag of one item of the registry tree onto the rules list, driven by the dialog's own mouse handlers.
#include <windowsx.h>

#include "dialog/DragImage.h"
#include "dialog/DropPlan.h"
#include "dialog/KindNames.h"
#include "dialog/RegistryRulesDlg.h"
#include "entry/HiveText.h"

namespace {
const CPoint hotSpot(10, 10);
}

void CRegistryRulesDlg::BeginRuleDrag(const NMTREEVIEWW& notification) {
    if (!MayBeginRuleDrag()) return;
    m_dragItem = notification.itemNew.hItem;
    m_registryTree.SelectItem(m_dragItem);
    delete m_dragImage;
    m_dragImage = MakeDragImage(m_registryTree, m_dragItem);
    if (m_dragImage == nullptr) return;
    m_dragImage->BeginDrag(0, hotSpot);
    // This only decides where the image first flashes up; the first move puts it right.
    CImageList::DragEnter(GetDesktopWindow(),
                          CPoint(GET_X_LPARAM(notification.action), GET_Y_LPARAM(notification.action)));
    // Wine 8 paints what lies between there and the first move black; a hidden image moves without painting.
    CImageList::DragShowNolock(FALSE);
    m_dragActive = true;
    m_dropRow = -1;
    m_dragTarget = &m_registryTree;
    m_dragSource = WindowFromPoint(notification.ptDrag);
    SetCapture();
}

void CRegistryRulesDlg::UpdateRuleDrag(CPoint point) {
    if (m_dragImage == nullptr) return;
    ClientToScreen(&point);
    CImageList::DragMove(point);
    CImageList::DragShowNolock(FALSE);
    CWnd* const window = WindowFromPoint(point);
    if (window == nullptr) return;
    if (window != m_dragTarget) LeaveDragTarget();
    m_dragTarget = window;
    if (window == &m_ruleList) HighlightDropRow(point);
    CImageList::DragShowNolock(TRUE);
}

// Only the rules list can hold a highlight. A row of -1 means every row.
void CRegistryRulesDlg::LeaveDragTarget() {
    if (m_dragTarget != &m_ruleList) return;
    m_ruleList.SetItemState(m_dropRow, 0, LVIS_DROPHILITED);
    if (m_dropRow == -1)
        m_ruleList.RedrawItems(0, m_ruleList.GetItemCount());
    else
        m_ruleList.RedrawItems(m_dropRow, m_dropRow);
    m_ruleList.UpdateWindow();
    m_dropRow = -1;
}

void CRegistryRulesDlg::HighlightDropRow(CPoint screenPoint) {
    m_ruleList.SetItemState(m_dropRow, 0, LVIS_DROPHILITED);
    m_ruleList.RedrawItems(m_dropRow, m_dropRow);
    m_ruleList.ScreenToClient(&screenPoint);
    m_dropRow = m_ruleList.HitTest(screenPoint);
    if (m_dropRow > -1) m_ruleList.SetItemState(m_dropRow, LVIS_DROPHILITED, LVIS_DROPHILITED);
    m_ruleList.RedrawItems(m_dropRow, m_dropRow);
    m_ruleList.UpdateWindow();
}

void CRegistryRulesDlg::RemoveDragImage() {
    CImageList::DragLeave(GetDesktopWindow());
    CImageList::EndDrag();
    if (m_dropRow != -1) m_ruleList.SetItemState(m_dropRow, 0, LVIS_DROPHILITED);
}

void CRegistryRulesDlg::DropRule(CPoint point) {
    ClientToScreen(&point);
    if (WindowFromPoint(point) == &m_ruleList) DropTreeItem(m_ruleList);
}

void CRegistryRulesDlg::DropTreeItem(CListCtrl& list) {
    const bool isHive = m_registryTree.IsHiveItem(m_dragItem);
    const bool isKey = m_registryTree.IsKeyItem(m_dragItem);
    list.SetItemState(m_dropRow, 0, LVIS_DROPHILITED);
    HKEY rootKey = nullptr;
    CString path;
    m_registryTree.GetItemPath(m_dragItem, rootKey, path);
    path = MakeHivePath(rootKey, path);
    const CString text = m_registryTree.GetItemText(m_dragItem);
    const DraggedItem dragged = isHive ? DraggedItem::Hive : isKey ? DraggedItem::Key : DraggedItem::Value;
    const DropPlan plan = PlanDrop(dragged, ViewOf(path), ViewOf(text), m_dropRow, list.GetItemCount());
    if (plan.refused) {
        AfxMessageBox(LoadResourceString(IDS_BARE_HIVE), MB_OK);
        UpdateDeleteButton();
        return;
    }
    EnableDeleteButton();
    const KindNames kinds;
    InsertRuleRow(plan.row, plan.kind == RuleKind::Branch ? kinds.branch : kinds.value, TextOf(plan.key),
                  TextOf(plan.value), 0, LVIS_FOCUSED | LVIS_SELECTED);
}

void CRegistryRulesDlg::OnTreeBeginDrag(NMHDR* header, LRESULT* result) {
    BeginRuleDrag(*reinterpret_cast<const NMTREEVIEWW*>(header));
    *result = 0;
}
