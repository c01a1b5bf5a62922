#include "dialog/RegistryRulesDlg.h"

#include "controls/AccessibleName.h"
#include "entry/PrivateMessages.h"
#include "helpers/ResourceString.h"

BEGIN_MESSAGE_MAP(CRegistryRulesDlg, CBvDialogBase)
ON_NOTIFY(TVN_BEGINDRAGW, IDC_REGISTRY_TREE, &CRegistryRulesDlg::OnTreeBeginDrag)
ON_NOTIFY(NM_SETFOCUS, IDC_RULE_LIST, &CRegistryRulesDlg::OnListSetFocus)
ON_NOTIFY(LVN_ITEMCHANGED, IDC_RULE_LIST, &CRegistryRulesDlg::OnListItemChanged)
ON_NOTIFY(LVN_KEYDOWN, IDC_RULE_LIST, &CRegistryRulesDlg::OnListSelectionMayChange)
ON_NOTIFY(NM_RCLICK, IDC_RULE_LIST, &CRegistryRulesDlg::OnListSelectionMayChange)
ON_NOTIFY(LVN_INSERTITEM, IDC_RULE_LIST, &CRegistryRulesDlg::OnListIgnored)
ON_NOTIFY(NM_KILLFOCUS, IDC_RULE_LIST, &CRegistryRulesDlg::OnListIgnored)
ON_NOTIFY(NM_CLICK, IDC_RULE_LIST, &CRegistryRulesDlg::OnListIgnored)
ON_BN_CLICKED(IDC_DELETE_RULE, &CRegistryRulesDlg::OnDeleteRule)
ON_BN_CLICKED(IDC_TYPE_FRAME, &CRegistryRulesDlg::OnTypeFrameClicked)
ON_EN_SETFOCUS(IDC_NEW_KEY, &CRegistryRulesDlg::OnStripSetFocus)
ON_EN_SETFOCUS(IDC_NEW_VALUE, &CRegistryRulesDlg::OnStripSetFocus)
ON_EN_KILLFOCUS(IDC_NEW_KEY, &CRegistryRulesDlg::OnKeyKillFocus)
ON_EN_CHANGE(IDC_NEW_VALUE, &CRegistryRulesDlg::OnValueChange)
ON_CBN_SELCHANGE(IDC_NEW_TYPE, &CRegistryRulesDlg::OnTypeSelChange)
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONUP()
ON_WM_MOUSEMOVE()
ON_MESSAGE(WM_CAPTURECHANGED, &CRegistryRulesDlg::OnCaptureChanged)
ON_MESSAGE(WM_ENABLE, &CRegistryRulesDlg::OnEnableMessage)
ON_WM_DESTROY()
ON_WM_CLOSE()
ON_WM_SIZE()
ON_MESSAGE(RRM_ENABLE_CELL_EDIT, &CRegistryRulesDlg::OnEnableCellEdit)
ON_MESSAGE(RRM_STRIP_ENTER, &CRegistryRulesDlg::OnStripEnterMessage)
ON_MESSAGE(RRM_STRIP_TAB, &CRegistryRulesDlg::OnStripTabMessage)
ON_MESSAGE(RRM_LIST_DELETE, &CRegistryRulesDlg::OnListDelete)
ON_MESSAGE(RRM_CELL_CHANGED, &CRegistryRulesDlg::OnCellChangedMessage)
ON_MESSAGE(RRM_STRIP_BACK_TAB, &CRegistryRulesDlg::OnStripBackTabMessage)
ON_MESSAGE(RRM_MARK_DIRTY, &CRegistryRulesDlg::OnMarkDirty)
ON_MESSAGE(RRM_HOLD_EDIT, &CRegistryRulesDlg::OnHoldEdit)
ON_MESSAGE(RRM_RELEASE_EDIT, &CRegistryRulesDlg::OnReleaseEdit)
ON_MESSAGE(RRM_CELL_EDIT_HELD, &CRegistryRulesDlg::OnCellEditNoted)
ON_MESSAGE(RRM_CELL_EDIT_DONE, &CRegistryRulesDlg::OnCellEditNoted)
ON_MESSAGE(RRM_LIST_KEY_UP, &CRegistryRulesDlg::OnListKeyUp)
ON_MESSAGE(RRM_FILL_COMBO, &CRegistryRulesDlg::OnFillComboMessage)
END_MESSAGE_MAP()

CRegistryRulesDlg::CRegistryRulesDlg(CWnd* parent)
    : CBvDialogBase(IDD_REGISTRY_RULES, parent), m_newKey(LoadResourceString(IDS_WATERMARK)) {}

// The drag image of the last drag stays, as any drag image does until the next drag.
CRegistryRulesDlg::~CRegistryRulesDlg() = default;

void CRegistryRulesDlg::DoDataExchange(CDataExchange* exchange) {
    CBvDialogBase::DoDataExchange(exchange);
    DDX_Control(exchange, IDC_KEY_FRAME, m_keyHeaderFrame);
    DDX_Control(exchange, IDC_VALUE_FRAME, m_valueHeaderFrame);
    DDX_Control(exchange, IDC_TYPE_FRAME, m_typeHeaderFrame);
    DDX_Control(exchange, IDOK, m_okButton);
    DDX_Control(exchange, IDC_VALUE_LABEL, m_valueLabel);
    DDX_Control(exchange, IDC_NEW_VALUE, m_valueEdit);
    DDX_Control(exchange, IDC_TYPE_LABEL, m_typeLabel);
    DDX_Control(exchange, IDC_NEW_TYPE, m_typeCombo);
    DDX_Control(exchange, IDC_NEW_KEY, m_keyEdit);
    DDX_Control(exchange, IDC_KEY_LABEL, m_keyLabel);
    DDX_Control(exchange, IDC_SPLITTER_BOUNDS, m_splitterBounds);
    DDX_Control(exchange, IDC_DELETE_RULE, m_deleteButton);
    DDX_Control(exchange, IDC_RULE_LIST, m_ruleList);
    DDX_Control(exchange, IDC_REGISTRY_TREE, m_registryTree);
    DDX_Text(exchange, IDC_NEW_KEY, m_newKey);
    DDX_CBString(exchange, IDC_NEW_TYPE, m_newType);
    DDX_Text(exchange, IDC_NEW_VALUE, m_newValue);
}

BOOL CRegistryRulesDlg::OnInitDialog() {
    CBvDialogBase::OnInitDialog();
    // A cell that held a refused key when the run before was ended went down with its window.
    m_mayLeaveEdit = 1;
    m_hostCursor = ::GetCursor();
    m_registryTree.Initialize(true);
    InitRuleList();
    ResetStrip();
    SelectDefaultType();
    ComputeSplitterRect();
    m_registryTree.SetFocus();
    m_deleteButton.ModifyStyle(WS_TABSTOP, 0);
    LayoutStrip();
    NameControls();
    return FALSE;
}

void CRegistryRulesDlg::NameControls() {
    // The boxes stand before their labels in the tab order, so the system finds none for them.
    const std::pair<CWnd*, CWnd*> labelled[] = {{&m_typeCombo, &m_typeLabel},  {&m_typeHeaderFrame, &m_typeLabel},
                                                {&m_keyEdit, &m_keyLabel},     {&m_keyHeaderFrame, &m_keyLabel},
                                                {&m_valueEdit, &m_valueLabel}, {&m_valueHeaderFrame, &m_valueLabel}};
    for (const auto& [control, label] : labelled) {
        CString name;
        label->GetWindowText(name);
        SetAccessibleName(*control, name);
    }
    SetAccessibleName(m_registryTree, L"Registry");
    SetAccessibleName(m_ruleList, L"Rules");
}

void CRegistryRulesDlg::OnOK() {
    if (!CommitStrip()) return;
    m_resultCode = RULES_RESULT_OK;
    HarvestRules();
    EndMouseMode();
    CDialog::OnOK();
}

void CRegistryRulesDlg::OnCancel() {
    // The code stays even when the user then decides to stay.
    m_resultCode = RULES_RESULT_CANCEL;
    // A question that was closed by other means, or never shown, was not answered with Yes.
    if (m_dirty != 0 && AfxMessageBox(LoadResourceString(IDS_CONFIRM_CANCEL), MB_YESNO) != IDYES) return;
    EndMouseMode();
    CDialog::OnCancel();
}

void CRegistryRulesDlg::OnClose() {
    // A cell editor that loses the focus checks its key, and holds the dialog open if it refuses it.
    SetFocus();
    if (m_mayLeaveEdit != 0) Default();
}

void CRegistryRulesDlg::OnSize(UINT type, int width, int height) {
    CBvDialogBase::OnSize(type, width, height);
}

LRESULT CRegistryRulesDlg::OnMarkDirty(WPARAM, LPARAM) {
    m_dirty = 1;
    return 0;
}

LRESULT CRegistryRulesDlg::OnEnableCellEdit(WPARAM, LPARAM) {
    m_ruleList.EnableCellEdit(true);
    return 0;
}

LRESULT CRegistryRulesDlg::OnHoldEdit(WPARAM, LPARAM) {
    m_mayLeaveEdit = 0;
    return 0;
}

LRESULT CRegistryRulesDlg::OnReleaseEdit(WPARAM, LPARAM) {
    m_mayLeaveEdit = 1;
    return 0;
}

LRESULT CRegistryRulesDlg::OnCellEditNoted(WPARAM, LPARAM) {
    return 0;
}
