// The modal dialog in which the administrator edits the rules, and the rule sets that it reads and rewrites.
//
// Its parts stand in files of their own: RuleSets.cpp (the sets), DlgRows.cpp (rows of the list), DlgDrag.cpp (drag
// from the tree), DlgStrip.cpp (the new-rule strip), DlgGeometry.cpp (layout and splitter), DlgMouse.cpp (what the
// mouse does, and how it ends). RegistryRulesDlg.cpp holds the life of the dialog and its message table.
#pragma once

#include <afxcmn.h>
#include <afxdialogex.h>
#include <afxwin.h>

#include "controls/AnchorLayout.h"
#include "controls/ComboListCtrl.h"
#include "controls/RegistryTree.h"
#include "dialog/RuleSet.h"
#include "entry/ColorEdit.h"
#include "entry/ValueEdit.h"
#include "resources/resource.h"
#include "siblings/uictrl/BvDialogBase.h"

class CKeyRule;
class CValueRule;

// How the dialog ended.
inline constexpr int RULES_RESULT_OK = 0x701;
inline constexpr int RULES_RESULT_CANCEL = 0x702;
inline constexpr int RULES_RESULT_NONE = 0x703;

class CRegistryRulesDlg : public CBvDialogBase {
public:
    // Builds the object only; the window lives during DoModal. A null parent means the active window of the thread.
    explicit CRegistryRulesDlg(CWnd* parent = nullptr);
    ~CRegistryRulesDlg() override;

    // RULES_RESULT_OK or RULES_RESULT_CANCEL after a run; RULES_RESULT_NONE only before the first. A run whose window
    // could not be created leaves what the one before it left.
    int GetResultCode() const { return m_resultCode; }
    // 1 when rows were inserted, edited or deleted since the dialog opened, whether or not they differ now; else 0.
    int IsDirty() const { return m_dirty; }

    // The rule sets: one pair for the whole library, in insertion order, duplicates allowed, nothing checked.
    // AddKeyRecord and AddValueRecord take ownership and return 1; a null pointer is ignored and gives 0.
    static int AddKeyRecord(CKeyRule* rule);
    static int AddValueRecord(CValueRule* rule);
    static int KeyRuleCount();
    static int ValueRuleCount();
    // The record at a 0-based index, still owned by the set. An index above the count plus 1 gives null; any other
    // index without a record, a negative one too, raises the invalid-argument exception.
    static CKeyRule* KeyRuleAt(int index);
    static CValueRule* ValueRuleAt(int index);
    // Deletes every record of both sets.
    static void ClearRules();

protected:
    void DoDataExchange(CDataExchange* exchange) override;
    BOOL OnInitDialog() override;
    BOOL PreTranslateMessage(MSG* message) override;
    void OnOK() override;
    void OnCancel() override;

    // Lifecycle
    afx_msg void OnClose();
    afx_msg void OnDestroy();
    afx_msg void OnSize(UINT type, int width, int height);

    // Rows
    afx_msg void OnListSetFocus(NMHDR* header, LRESULT* result);
    afx_msg void OnListItemChanged(NMHDR* header, LRESULT* result);
    afx_msg void OnListSelectionMayChange(NMHDR* header, LRESULT* result);
    afx_msg void OnListIgnored(NMHDR* header, LRESULT* result);
    afx_msg void OnDeleteRule();
    afx_msg LRESULT OnListDelete(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnListKeyUp(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCellChangedMessage(WPARAM listId, LPARAM displayInfo);
    afx_msg LRESULT OnMarkDirty(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnEnableCellEdit(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnHoldEdit(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnReleaseEdit(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCellEditNoted(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnFillComboMessage(WPARAM column, LPARAM strings);

    // Strip
    afx_msg void OnTypeFrameClicked();
    afx_msg void OnStripSetFocus();
    afx_msg void OnKeyKillFocus();
    afx_msg void OnValueChange();
    afx_msg void OnTypeSelChange();
    afx_msg LRESULT OnStripEnterMessage(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnStripTabMessage(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnStripBackTabMessage(WPARAM wParam, LPARAM lParam);

    // Mouse: the drag of a tree item, or the splitter
    afx_msg void OnTreeBeginDrag(NMHDR* header, LRESULT* result);
    afx_msg void OnLButtonDown(UINT flags, CPoint point);
    afx_msg void OnLButtonUp(UINT flags, CPoint point);
    afx_msg void OnMouseMove(UINT flags, CPoint point);
    afx_msg LRESULT OnCaptureChanged(WPARAM wParam, LPARAM taker);
    afx_msg LRESULT OnEnableMessage(WPARAM enabled, LPARAM lParam);

    DECLARE_MESSAGE_MAP()

private:
    void NameControls();

    // DlgRows.cpp
    void InitRuleList();
    void InsertColumns();
    void FillRuleList();
    // Deletes the equal row, if there is one, and inserts at `row`, a negative one at the top; always true.
    bool InsertRuleRow(int row, const CString& type, const CString& key, const CString& value, int itemData, int state);
    int PutRow(int row, const CString& type, const CString& key, const CString& value, int itemData);
    void HarvestRules();
    void DeleteSelectedRule();
    void OnCellChanged(int item, int subItem);
    void OnFillCombo(int column, CStringList& strings);
    int FirstSelectedRow();
    void UpdateDeleteButton();
    void EnableDeleteButton();
    void DisableDeleteButton();

    // DlgStrip.cpp
    bool IsStripAtRest() const;
    bool ResetStrip();
    bool CommitStrip();
    void SelectDefaultType();
    void OnStripEnter();
    void OnStripTab();
    void OnStripBackTab();

    // DlgDrag.cpp
    void BeginRuleDrag(const NMTREEVIEWW& notification);
    void UpdateRuleDrag(CPoint point);
    void LeaveDragTarget();
    void HighlightDropRow(CPoint screenPoint);
    void RemoveDragImage();
    void DropRule(CPoint point);
    void DropTreeItem(CListCtrl& list);

    // DlgMouse.cpp
    bool MayBeginRuleDrag();
    bool HasCapture() const;
    // Ends the drag of a rule, without a drop, or of the gap; nothing happens when there is none.
    void EndMouseMode();

    // DlgGeometry.cpp
    void LayoutStrip();
    int LayoutHeaderCell(CDC& dc, int frameId, int labelId, int minFrameHeight, int labelOffset);
    int MoveControlToY(int id, int y);
    void ComputeSplitterRect();
    bool MoveSplitter(CPoint point);
    CRect ControlRect(int id);
    bool IsInSplitter(CPoint point) const;
    void BeginSplitterDrag(CPoint point);
    void TrackSplitter(CPoint point);

    static RuleSet<CKeyRule> s_keyRules;
    static RuleSet<CValueRule> s_valueRules;

    CButton m_keyHeaderFrame;
    CButton m_valueHeaderFrame;
    CButton m_typeHeaderFrame;
    CButton m_okButton;
    CStatic m_valueLabel;
    CValueEdit m_valueEdit;
    CStatic m_typeLabel;
    CComboBox m_typeCombo;
    CColorEdit m_keyEdit;
    CStatic m_keyLabel;
    CButton m_splitterBounds;
    CButton m_deleteButton;
    CComboListCtrl m_ruleList;
    CRegistryTree m_registryTree;
    CAnchorLayout m_anchorLayout;  // attached to nothing, as the frame is fixed

    CString m_newKey;
    CString m_newType;
    CString m_newValue;
    CRect m_splitterRect;
    int m_splitterActive = 0;
    int m_splitterPosX = 0;
    int m_splitterIdle = 0;
    int m_savedTypeIndex = 0;
    int m_resultCode = RULES_RESULT_NONE;
    int m_dirty = 0;
    int m_mayLeaveEdit = 1;
    int m_dropRow = -1;
    CWnd* m_dragSource = nullptr;
    CWnd* m_dragTarget = nullptr;
    bool m_dragActive = false;
    CImageList* m_dragImage = nullptr;
    HTREEITEM m_dragItem = nullptr;
    HCURSOR m_hostCursor = nullptr;  // in force when the dialog opened
};
