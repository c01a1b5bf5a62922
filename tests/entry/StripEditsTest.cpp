#include "entry/EntryFixture.h"

namespace {

constexpr wchar_t kWatermark[] = L"Click here to create a new rule";

class StripEdits : public EntryTest {};

TEST_F(StripEdits, KeysThatEndTheTypingReachTheParentAfterTheCheck) {
    Run([&](Dialog& d) {
        d.Click(IDC_KEY);
        d.Type(L"hklm\\Software\\\u00E9\u4E2D");
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"owner 8108", "dialog 8101"}));
        d.Key(VK_TAB);
        EXPECT_EQ(Events(), (EventLog{"owner 8108", "dialog 8102"}));
        d.Key(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(Events(), (EventLog{"owner 8108", "dialog 8105"}));
        EXPECT_EQ(d.FocusId(), IDC_KEY);  // moving on is the parent's business
        EXPECT_EQ(d.Text(IDC_KEY), L"hklm\\Software\\\u00E9\u4E2D");

        d.Click(IDC_VALUE);
        d.Type(L"no check \\\\");
        d.Key(VK_RETURN);
        d.Key(VK_TAB);
        d.Key(VK_TAB, {VK_SHIFT});
        EXPECT_EQ(Events(), (EventLog{"dialog 8101", "dialog 8102", "dialog 8105"}));
        EXPECT_EQ(d.FocusId(), IDC_VALUE);
        EXPECT_EQ(d.Text(IDC_VALUE), L"no check \\\\");
        Close(d);
    });
}

TEST_F(StripEdits, ARefusedKeyIsSelectedOnOk) {
    const struct {
        const wchar_t* text;
        const wchar_t* refusal;
        std::pair<int, int> selection;
    } cases[] = {
        {L"Software", L"The specified Hive is not valid.", {0, 8}},
        {L"HKXX\\Software", L"The specified Hive is not valid.", {0, 4}},
        {L" HKLM\\a", L"The specified Hive is not valid.", {0, 5}},
        {L"HKLM\\", L"Hives cannot be migrated. You must specify a subkey.", {5, 5}},  // stays where it was
        {L"HKLM\\a\\\\\\", L"The specified key is invalid. Trailing backslashes are not allowed.", {6, 9}},
        {L"HKLM\\a\\\\\\b\\\\c", L"The specified key is invalid. Multiple backslashes are not allowed.", {6, 9}},
    };
    Run([&](Dialog& d) {
        for (const auto& [text, refusal, selection] : cases) {
            for (const WORD key : {WORD{VK_RETURN}, WORD{VK_TAB}}) {
                d.Click(IDC_KEY);
                SetText(d.Control(IDC_KEY), text);
                d.Key(key);
                EXPECT_EQ(d.AnswerBox(IDOK), refusal) << text;
                EXPECT_EQ(Events(), (EventLog{"owner 8107"})) << text;
                EXPECT_EQ(d.FocusId(), IDC_KEY) << text;
                EXPECT_EQ(d.Text(IDC_KEY), text);
                EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_KEY)), selection) << text;
            }
        }
        Close(d);
    });
    EXPECT_EQ(m_driver.BoxTexts().size(), 2 * std::size(cases));
}

TEST_F(StripEdits, CancelEmptiesTheBoxForAnUnknownHiveOnly) {
    const struct {
        const wchar_t* text;
        const wchar_t* left;
    } cases[] = {
        {L"Software", L""},           {L"\\", L""}, {L"HKLM", L"HKLM"}, {L"HKLM\\a\\", L"HKLM\\a\\"},
        {L"HKLM\\\\a", L"HKLM\\\\a"},
    };
    Run([&](Dialog& d) {
        for (const auto& [text, left] : cases) {
            d.Click(IDC_KEY);
            SetText(d.Control(IDC_KEY), text);
            d.Key(VK_RETURN);
            d.AnswerBox(IDCANCEL);
            EXPECT_EQ(Events(), (EventLog{"owner 8108"})) << text;
            EXPECT_EQ(d.Text(IDC_KEY), left);
        }
        Close(d);
    });
}

TEST_F(StripEdits, ValidateKeySaysHowTheRefusalWasAnswered) {
    Run([&](Dialog& d) {
        int result = -1;
        const auto ask = [&](const std::wstring& text, int button) {
            SetText(d.Control(IDC_KEY), text);
            // The box inside holds this call up, so the answer has to come from the other side.
            SendNotifyMessageW(m_dialog->m_hWnd, CEntryDialog::kValidate, 0, reinterpret_cast<LPARAM>(&result));
            if (button != 0) d.AnswerBox(button);
            d.WaitFor("the result", [&] { return result != -1; });
            return std::exchange(result, -1);
        };
        EXPECT_EQ(ask(L"", 0), KEY_OK);
        EXPECT_EQ(ask(kWatermark, 0), KEY_OK);
        EXPECT_EQ(Events(), EventLog{});  // a blank key tells nobody
        EXPECT_EQ(ask(L"HKU\\a", 0), KEY_OK);
        EXPECT_EQ(ask(L"HKU", IDOK), KEY_RETRY);
        EXPECT_EQ(ask(L"HKU", IDCANCEL), KEY_DISMISSED);
        EXPECT_EQ(ask(L"HKU\\a", 0), KEY_OK);
        Close(d);
    });
}

TEST_F(StripEdits, WithoutAnOwnerNobodyIsTold) {
    RunUnder(nullptr, [&](Dialog& d) {
        d.Click(IDC_KEY);
        d.Type(L"HKLM\\a");
        d.Key(VK_RETURN);
        SetText(d.Control(IDC_KEY), L"HKLM\\a\\");
        d.Key(VK_RETURN);
        d.AnswerBox(IDOK);
        d.Key(VK_RETURN);
        d.AnswerBox(IDCANCEL);
        EXPECT_EQ(Events(), (EventLog{"dialog 8101"}));
        Close(d);
    });
}

TEST_F(StripEdits, OnlyAClickTakesTheWatermarkAway) {
    Run([&](Dialog& d) {
        const HWND key = d.Control(IDC_KEY);
        d.Click(IDC_VALUE);
        for (const bool right : {false, true}) {
            SetText(key, kWatermark);
            if (right) {
                SendMessageW(key, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
            } else {
                d.Click(IDC_KEY);
            }
            EXPECT_EQ(d.Text(IDC_KEY), L"") << right;
        }

        SetText(key, L"click here to create a new rule");
        d.Click(IDC_KEY);
        SendMessageW(key, WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
        EXPECT_EQ(d.Text(IDC_KEY), L"click here to create a new rule");

        SetText(key, kWatermark);
        d.Type(L"x");
        EXPECT_EQ(d.Text(IDC_KEY), std::wstring(kWatermark) + L"x");
        SetText(key, kWatermark);
        d.Key(VK_RETURN);  // blank: nothing to object to
        EXPECT_EQ(Events(), (EventLog{"dialog 8101"}));
        EXPECT_EQ(d.Text(IDC_KEY), kWatermark);
        Close(d);
    });
}

struct Colors {
    COLORREF text;
    COLORREF background;
    COLORREF brush;
    bool operator==(const Colors&) const = default;
};

// What the key box answers when the dialog is asked for its colours.
Colors AskColors(Dialog& d, UINT message = WM_CTLCOLOREDIT) {
    Colors colors{};
    d.OnGuiThread([&] {
        const HWND key = d.Control(IDC_KEY);
        const HDC dc = GetDC(key);
        const auto brush =
            SendMessageW(d.Window(), message, reinterpret_cast<WPARAM>(dc), reinterpret_cast<LPARAM>(key));
        LOGBRUSH description{};
        GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof description, &description);
        colors = {GetTextColor(dc), GetBkColor(dc), description.lbColor};
        ReleaseDC(key, dc);
    });
    return colors;
}

TEST_F(StripEdits, ColoursFollowTheStateOfTheKeyBox) {
    constexpr COLORREF kBlack = 0;
    constexpr COLORREF kGrey = 0x808080;
    constexpr COLORREF kWhite = 0xFFFFFF;
    constexpr COLORREF kOther = 0x0000F0;
    Run([&](Dialog& d) {
        EXPECT_EQ(AskColors(d), (Colors{kBlack, kWhite, kWhite}));
        d.OnGuiThread([&] {
            m_dialog->key.SetBackgroundColor(kOther);
            m_dialog->key.ShowWatermark();
        });
        EXPECT_EQ(AskColors(d), (Colors{kGrey, kWhite, kWhite}));
        EXPECT_EQ(d.Text(IDC_KEY), kWatermark);

        SendMessageW(d.Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(d.Control(IDC_KEY)), TRUE);
        d.Key(VK_SHIFT);  // any key at all
        EXPECT_EQ(AskColors(d), (Colors{kBlack, kWhite, kWhite}));
        EXPECT_EQ(d.Text(IDC_KEY), kWatermark);

        d.OnGuiThread([&] {
            m_dialog->key.SetTextColor(kGrey);
            m_dialog->key.SetBackgroundColor(kOther);
            m_dialog->key.SetReadOnly(true);
        });
        EXPECT_EQ(AskColors(d, WM_CTLCOLORSTATIC), (Colors{kGrey, kOther, kOther}));
        EXPECT_NE(GetWindowLongPtrW(d.Control(IDC_KEY), GWL_STYLE) & ES_READONLY, 0);
        d.OnGuiThread([&] { m_dialog->key.SetReadOnly(false); });
        EXPECT_EQ(AskColors(d), (Colors{kGrey, kWhite, kWhite}));
        EXPECT_EQ(GetWindowLongPtrW(d.Control(IDC_KEY), GWL_STYLE) & ES_READONLY, 0);

        d.OnGuiThread([&] {
            m_dialog->key.SetBackgroundColor(kOther);
            m_dialog->key.ClearWatermark();
        });
        EXPECT_EQ(AskColors(d), (Colors{kBlack, kWhite, kWhite}));
        EXPECT_EQ(d.Text(IDC_KEY), L"");
        Close(d);
    });
}

TEST_F(StripEdits, AColourShowsAtOnce) {
    Run([&](Dialog& d) {
        d.OnGuiThread([&] {
            const HDC dc = GetDC(m_dialog->key.m_hWnd);
            RECT area{};
            GetClientRect(m_dialog->key.m_hWnd, &area);
            for (const COLORREF color : {RGB(0, 0, 0xF0), RGB(0xF0, 0, 0)}) {
                m_dialog->key.SetBackgroundColor(color);
                EXPECT_EQ(GetPixel(dc, area.right - 3, area.bottom / 2), color);
            }
            ReleaseDC(m_dialog->key.m_hWnd, dc);
        });
        Close(d);
    });
}

TEST_F(StripEdits, TextsOfAnyLengthCanBeTypedOnAndAreCheckedWhole) {
    const std::wstring key = L"HKLM\\" + std::wstring(40000, L'k');
    Run([&](Dialog& d) {
        d.Click(IDC_KEY);
        SetText(d.Control(IDC_KEY), key + L"\\");
        d.Key(VK_RETURN);
        EXPECT_EQ(d.AnswerBox(IDOK), L"The specified key is invalid. Trailing backslashes are not allowed.");
        EXPECT_EQ(Dialog::EditSelection(d.Control(IDC_KEY)), std::pair(40005, 40006));
        d.Type(L"\\x");  // in place of the selection
        EXPECT_EQ(d.Text(IDC_KEY), key + L"\\x");
        Events();
        d.Key(VK_RETURN);
        EXPECT_EQ(Events(), (EventLog{"owner 8108", "dialog 8101"}));

        d.Click(IDC_VALUE);
        SetText(d.Control(IDC_VALUE), std::wstring(40000, L'v'));
        d.Type(L"!");
        EXPECT_EQ(d.Text(IDC_VALUE), std::wstring(40000, L'v') + L'!');
        Close(d);
    });
}

}  // namespace
