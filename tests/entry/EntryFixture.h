// Runs the dialog of these tests, and opens cell editors in its list.
#pragma once

#include <gtest/gtest.h>
#include <utility>

#include "entry/EntryDialog.h"
#include "entry/InPlaceCombo.h"
#include "entry/InPlaceEdit.h"
#include "support/DialogDriver.h"
#include "support/WindowText.h"

class EntryTest : public testing::Test {
protected:
    ~EntryTest() override {
        CInPlaceEdit::DeleteInstance();
        CInPlaceCombo::DeleteInstance();
    }

    // Runs the script against a new dialog. The record starts empty.
    void Run(const std::function<void(Dialog&)>& script) {
        CEntryDialog dialog(m_log);
        m_dialog = &dialog;
        m_driver.Run([&] { dialog.DoModal(); },
                     [&](Dialog& d) {
                         m_log.clear();
                         script(d);
                     });
        m_dialog = nullptr;
    }

    static void Close(Dialog& d) {
        d.Click(IDCANCEL);
        d.WaitUntilClosed();
    }

    // What has been recorded since the last call.
    EventLog Events() { return std::exchange(m_log, {}); }

    // Opens the cell edit over a part of the list and gives its window.
    HWND OpenEdit(Dialog& d, int row, int column, const CString& text, const CString& validChars = L"") {
        d.OnGuiThread([&] {
            EXPECT_TRUE(CInPlaceEdit::GetInstance()->ShowEditCtrl(ES_AUTOVSCROLL | ES_AUTOHSCROLL | ES_NOHIDESEL,
                                                                  CRect(5, 25, 205, 45), &m_dialog->list, 0, row,
                                                                  column, validChars, text));
        });
        return Opened(d, L"Edit");
    }

    // The editor of that class in the list, in the list's font. The record starts anew.
    HWND Opened(Dialog& d, const wchar_t* className) {
        Events();
        const HWND list = d.Control(IDC_CELLS);
        const HWND editor = Dialog::FindBelow(list, className);
        EXPECT_EQ(SendMessageW(editor, WM_GETFONT, 0, 0), SendMessageW(list, WM_GETFONT, 0, 0));
        return editor;
    }

    // Puts a text in place of the edit's and its caret at the end, without a key.
    static void SetText(HWND edit, const std::wstring& text) {
        SendMessageW(edit, EM_SETSEL, 0, -1);
        SendMessageW(edit, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }

    DialogDriver m_driver;
    EventLog m_log;
    CEntryDialog* m_dialog = nullptr;
};
