// The edit over a cell: how it ends, what it tells, and what may happen while it ends.
#include "controls/ControlsHost.h"
#include "entry/HiveText.h"
#include "entry/Hives.h"
#include "support/WindowText.h"

namespace {

constexpr wchar_t kUnknownHive[] = L"The specified Hive is not valid.";
constexpr wchar_t kBareHive[] = L"Hives cannot be migrated. You must specify a subkey.";
constexpr wchar_t kTrailing[] = L"The specified key is invalid. Trailing backslashes are not allowed.";

class CellEdit : public ControlsTest {
protected:
    // Puts a text in place of the edit's, without a key.
    static void Put(HWND edit, const wchar_t* text) {
        SendMessageW(edit, EM_SETSEL, 0, -1);
        SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text));
    }
    // Keys without a box.
    void Keys(const wchar_t* keys, const std::string& told, const wchar_t* left) {
        Expect([&] { Type(keys); }, L"", 0, told, left);
    }
    // Keys whose box is answered.
    void Asked(const wchar_t* keys, const wchar_t* box, int answer, const std::string& told, const wchar_t* left) {
        Expect([&] { Type(keys); }, box, answer, told, left);
    }
};

}  // namespace

TEST_F(CellEdit, KeysEndItOrAreRefused) {
    Run([&](Dialog& d) {
        // Escape on a refused key is asked about, and stays in force until a key is accepted.
        HWND edit = OpenEdit(0, kKey, L"HKCU\\old");
        Asked(L"wrong\x1b", kUnknownHive, IDOK, "8107 8109", L"wrong");
        EXPECT_EQ(Dialog::EditSelection(edit), std::pair(0, 5));
        Keys(L"HKCU\\new\r", "8108 end 0,1 'HKCU\\old' 8104 8106 8110", kClosed);

        // Tab checks in every column and moves nothing; its box asks once, though the focus moves with it.
        for (const int column : {kKey, kValue}) {
            edit = OpenEdit(0, column, L"HKCU\\old");
            Keys(L"\t", "8108 list:8102", L"HKCU\\old");
            Expect([&] { d.Key(VK_TAB, {VK_SHIFT}); }, L"", 0, "8108 list:8105", L"HKCU\\old");
            Put(edit, L"HKCU\\a\\");
            Asked(L"\t", kTrailing, IDOK, "8107", L"HKCU\\a\\");
            EXPECT_EQ(Dialog::EditSelection(edit), std::pair(6, 7));
            Asked(L"\t", kTrailing, IDCANCEL, "8108", L"HKCU\\a\\");
            Put(edit, L"HKCU\\a");
            Keys(L"\r", column == kKey ? "8108 end 0,1 'HKCU\\a' 8104 8106 8110" : "end 0,2 'HKCU\\a' 8104 8106 8110",
                 kClosed);
        }
        // Return that comes as a character.
        const auto ctrlM = [&] { d.Key('M', {VK_CONTROL}); };
        OpenEdit(0, kKey, L"HKCU\\old");
        Expect(ctrlM, L"", 0, "8108 end 0,1 'HKCU\\old' 8104 8106 8110 key13", kClosed);
        OpenEdit(0, kKey, L"HKCU");
        Expect(ctrlM, kBareHive, IDOK, "8107 8109 key13", L"HKCU");
        Expect(ctrlM, kBareHive, IDCANCEL, "8108 8110 key13", kClosed);
        // An emptied key.
        OpenEdit(0, kKey, L"");
        Asked(L"\r", kUnknownHive, IDOK, "8107 8109", L"");
        Asked(L"\r", kUnknownHive, IDCANCEL, "8108", kClosed);
        EXPECT_EQ(d.List(IDC_RULE_LIST).Text(0, kKey), L"HKCU\\old") << "the cell keeps what it had";

        // Characters outside the allowed ones; what is pasted is not looked at.
        edit = OpenEdit(0, kValue, L"", L"abc");
        Keys(L"a", "", L"a");
        Asked(L"x", L"%s is not allowed is not allowed", IDOK, "", L"a");
        Keys(L"cb\b", "", L"ac");
        Put(edit, L"xyz");
        SendMessageW(edit, EM_SETSEL, 0, -1);
        d.Key('C', {VK_CONTROL});
        d.Key('V', {VK_CONTROL});
        Expect([&] { d.Key('V', {VK_CONTROL}); }, L"", 0, "", L"xyzxyz");
        Keys(L"\r", "end 0,2 'xyzxyz' 8104 8106 8110", kClosed);

        // The focus goes to no window of ours.
        edit = OpenEdit(0, kValue, L"stays");
        d.OnGuiThread([] { SetFocus(nullptr); });
        EXPECT_EQ(Told(), "");
        Expect([&] { d.Click(edit); }, L"", 0, "", L"stays");
    });
}

TEST_F(CellEdit, ItsBoxMayMoveTheFocusOrOutliveIt) {
    Run([&](Dialog& d) {
        for (const bool byTab : {true, false}) {
            const auto check = [&] {
                byTab ? Type(L"\t") : Leave();
                d.ExpectBox();
            };
            // The focus comes and goes while the box is up: that asks nothing again.
            HWND edit = OpenEdit(0, kKey, L"HKCU\\a\\");
            const auto moveFocus = [&] {
                check();
                d.OnGuiThread([&] {
                    SetFocus(edit);
                    SetFocus(m_host.m_list);
                });
            };
            Expect(moveFocus, kTrailing, IDOK, byTab ? "8107" : "8107 8109", L"HKCU\\a\\");
            Expect(moveFocus, kTrailing, IDCANCEL, byTab ? "8108" : "8108 8110", byTab ? L"HKCU\\a\\" : kClosed);
            if (byTab) Asked(L"\x1b", kTrailing, IDCANCEL, "8108 8110", kClosed);
            // The editors are deleted while the box is up, and wanted again before it is answered.
            for (const wchar_t* text : {L"not a key", L""}) {
                if (byTab && *text == L'\0') continue;  // Tab finds nothing wrong with an empty text
                for (const int answer : {IDOK, IDCANCEL}) {
                    edit = OpenEdit(0, kKey, text);
                    CInPlaceEdit* next = nullptr;
                    const auto deleteIt = [&] {
                        check();
                        d.OnGuiThread([&] {
                            CInPlaceEdit::DeleteInstance();
                            EXPECT_FALSE(IsWindow(edit));
                            next = CInPlaceEdit::GetInstance();
                        });
                    };
                    Expect(deleteIt, kUnknownHive, answer, "", kClosed);
                    EXPECT_NE(d.Focus(), nullptr);
                    EXPECT_EQ(CInPlaceEdit::GetInstance(), next);
                }
            }
        }
    });
}

TEST_F(CellEdit, AnEndThatIsUnderWayIsNotRepeated) {
    Run([&](Dialog& d) {
        const HWND edit = OpenEdit(1, kValue, L"old");
        // As the dialog may: the focus comes and goes, another cell is asked for, a box comes up.
        m_host.m_list.m_onEndEdit = [&] {
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
            SetFocus(edit);
            SetFocus(m_host.m_list);
            m_host.m_list.ShowInPlaceEdit(0, kValue, L"other");
            MessageBoxW(m_host, L"while the edit ends", L"", MB_OK);
        };
        Asked(L"new\r", L"while the edit ends", IDOK, "end 1,2 'new' 8104 8106 8110", kClosed);
        EXPECT_EQ(d.List(IDC_RULE_LIST).Text(1, kValue), L"new");
    });
}

TEST_F(CellEdit, AWindowThatGoesDownOrCannotBeCreatedLeavesTheNextEditFree) {
    for (const bool whileBoxIsUp : {false, true}) {
        Run([&](Dialog& d) {
            const HWND edit = OpenEdit(0, whileBoxIsUp ? kKey : kValue, L"not a key");
            if (whileBoxIsUp) {
                Leave();
                d.ExpectBox();
            }
            d.OnGuiThread([&] { m_host.m_list.DestroyWindow(); });
            EXPECT_FALSE(IsWindow(edit));
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
            if (whileBoxIsUp) d.AnswerBox(IDOK);
        });
    }
    Run([&](Dialog& d) {
        d.OnGuiThread([&] {
            CWnd gone;  // no window: no parent for a child
            EXPECT_FALSE(
                CInPlaceEdit::GetInstance()->ShowEditCtrl(0, CRect(0, 0, 9, 9), &gone, 0, 0, kValue, L"", L"x"));
            EXPECT_EQ(CInPlaceEdit::IsActive(), 0);
        });
        OpenEdit(2, kValue, L"next");
        Keys(L"\r", "end 2,2 'next' 8104 8106 8110", kClosed);
    });
}

TEST_F(CellEdit, PaintsWithTheColoursThatEachCallSets) {
    constexpr COLORREF kBlack = 0, kGrey = 0x808080, kWhite = 0xFFFFFF, kRed = 0x0201C8, kBlue = 0xFA0403;
    constexpr wchar_t kWatermark[] = L"Click here to create a new rule";
    const struct {
        void (*change)(CInPlaceEdit&);
        const wchar_t* text;
        COLORREF letters, background;
        bool isReadOnly;
    } steps[] = {
        {[](CInPlaceEdit&) {}, L"text", kBlack, kWhite, false},
        {[](CInPlaceEdit& edit) { edit.SetTextColor(kRed); }, L"text", kRed, kWhite, false},
        {[](CInPlaceEdit& edit) { edit.SetBackgroundColor(kBlue); }, L"text", kRed, kBlue, false},
        {[](CInPlaceEdit& edit) { edit.SetReadOnly(true); }, L"text", kRed, kBlue, true},
        {[](CInPlaceEdit& edit) { edit.SetReadOnly(false); }, L"text", kRed, kWhite, false},
        {[](CInPlaceEdit& edit) { edit.SetBackgroundColor(kBlue), edit.ShowWatermark(); }, kWatermark, kGrey, kWhite,
         false},
        // A key clears nothing, and shows it as if it were typed.
        {[](CInPlaceEdit& edit) { edit.SendMessage(WM_KEYDOWN, VK_RIGHT); }, kWatermark, kBlack, kWhite, false},
        {[](CInPlaceEdit& edit) { edit.SetTextColor(kRed), edit.ClearWatermark(); }, L"", kBlack, kWhite, false},
    };
    Run([&](Dialog& d) {
        OpenEdit(0, kValue, L"text");
        d.OnGuiThread([&] {
            CInPlaceEdit& edit = *CInPlaceEdit::GetInstance();
            CDC dc;
            dc.CreateCompatibleDC(nullptr);
            for (const auto& step : steps) {
                step.change(edit);
                const LRESULT brush = m_host.m_list.SendMessage(WM_CTLCOLOREDIT, reinterpret_cast<WPARAM>(dc.m_hDC),
                                                                reinterpret_cast<LPARAM>(edit.m_hWnd));
                LOGBRUSH solid{};
                GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof solid, &solid);
                EXPECT_EQ(WindowText(edit), step.text) << &step - steps;
                EXPECT_EQ(GetTextColor(dc.m_hDC), step.letters) << &step - steps;
                EXPECT_TRUE(GetBkColor(dc.m_hDC) == step.background && solid.lbColor == step.background)
                    << &step - steps;
                EXPECT_EQ((edit.GetStyle() & ES_READONLY) != 0, step.isReadOnly) << &step - steps;
            }
        });
    });
}

TEST(HiveText, TheTableIsFilledFromTheStringTable) {
    for (std::size_t row = 0; row < Hives().size(); ++row) {
        EXPECT_EQ(Hives()[row].rootKey, ShippedHives()[row].rootKey);
        EXPECT_EQ(Hives()[row].fullName + Hives()[row].abbreviation,
                  ShippedHives()[row].fullName + ShippedHives()[row].abbreviation);
    }
}
