#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "framework/TestApp.h"
#include "framework/TestModule.h"

namespace {

// Answers the message boxes of this thread with OK and keeps what each showed.
class BoxAnswerer {
public:
    struct Box {
        std::wstring title;
        std::wstring text;
        HWND owner;
    };

    BoxAnswerer() : m_hook(SetWindowsHookExW(WH_CBT, &OnHook, nullptr, GetCurrentThreadId())) { s_boxes.clear(); }
    ~BoxAnswerer() { UnhookWindowsHookEx(m_hook); }
    BoxAnswerer(const BoxAnswerer&) = delete;
    BoxAnswerer& operator=(const BoxAnswerer&) = delete;

    static Box Last() { return s_boxes.empty() ? Box{} : s_boxes.back(); }

private:
    static constexpr int kTextId = 0xFFFF;

    static std::wstring TextOf(HWND window) {
        wchar_t text[200];
        return {text, static_cast<size_t>(GetWindowTextW(window, text, 200))};
    }
    static LRESULT CALLBACK OnHook(int code, WPARAM wParam, LPARAM lParam) {
        const HWND window = reinterpret_cast<HWND>(wParam);
        if (code == HCBT_ACTIVATE && GetDlgItem(window, kTextId) != nullptr) {
            s_boxes.push_back({TextOf(window), TextOf(GetDlgItem(window, kTextId)), GetWindow(window, GW_OWNER)});
            PostMessageW(window, WM_COMMAND, IDOK, 0);
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    static inline std::vector<Box> s_boxes;
    HHOOK m_hook;
};

// A top-level window, or a child or popup of another.
class PlainWindow {
public:
    PlainWindow(DWORD style, HWND parent)
        : m_window(CreateWindowExW(0, L"STATIC", L"", style | WS_VISIBLE, 0, 0, 50, 50, parent, nullptr, nullptr,
                                   nullptr)) {}
    ~PlainWindow() { DestroyWindow(m_window); }
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;
    HWND Handle() const { return m_window; }

private:
    HWND m_window;
};

}  // namespace

TEST(AppMessageBox, BearsTheNameOfTheCurrentApplication) {
    const BoxAnswerer answerer;
    const TestModule module;
    EXPECT_EQ(AfxMessageBox(L"Hello"), IDOK);
    EXPECT_EQ(answerer.Last().title, L"framework_base_test");
    EXPECT_EQ(answerer.Last().text, L"Hello");

    module.Call([] { EXPECT_EQ(AfxMessageBox(230U, MB_OKCANCEL), IDOK); });
    EXPECT_EQ(answerer.Last().title, L"The module");
    EXPECT_EQ(answerer.Last().text, L"Only the module has this");
}

TEST(AppMessageBox, IsOwnedByTheActiveWindow) {
    const BoxAnswerer answerer;
    AfxMessageBox(L"No window");
    EXPECT_EQ(answerer.Last().owner, nullptr);

    const PlainWindow main(WS_OVERLAPPEDWINDOW, nullptr);
    SetActiveWindow(main.Handle());
    const PlainWindow child(WS_CHILD, main.Handle());
    SetFocus(child.Handle());
    AfxMessageBox(L"A child has the focus");
    EXPECT_EQ(answerer.Last().owner, main.Handle());

    const PlainWindow popup(WS_POPUP, main.Handle());
    SetActiveWindow(popup.Handle());
    AfxMessageBox(L"A popup is active");
    EXPECT_EQ(answerer.Last().owner, popup.Handle());
}

TEST(AppMessageBox, GoesThroughTheApplication) {
    class CSilentApp : public CWinApp {
    public:
        int DoMessageBox(LPCWSTR text, UINT type, UINT helpId) override {
            m_seen.Format(L"%s|%u|%u", text, type, helpId);
            return IDNO;
        }
        CString m_seen;
    };
    {
        CSilentApp app;
        EXPECT_EQ(AfxMessageBox(229U, MB_YESNO), IDNO);
        EXPECT_EQ(app.m_seen, L"The host|4|229");
        EXPECT_EQ(AfxMessageBox(L"text", MB_OK), IDNO);
        EXPECT_EQ(app.m_seen, L"text|0|0");
    }
    EXPECT_EQ(AfxGetApp(), nullptr);
    AfxGetModuleState()->m_pCurrentWinApp = &theTestApp;
}
