// A test of a dialog in steps: what is done, all that looks different afterwards, and the answer to a box it brought
// up.
//
//     Go(d, {{Click(IDC_NEW_KEY), L"focus=key strip=Branch||"},
//            {Type(L"HKCU\\k\r"), L"delete=live, tab dirty=yes rows=Branch|HKCU\\k|; selected=0"},
//            {Click(IDCANCEL), L"box=Are you sure?", IDYES}});
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <utility>

#include "support/DialogDriver.h"

using Act = std::function<void(Dialog&)>;
using Look = std::map<std::wstring, std::wstring>;

struct Step {
    Act act;
    // As NAME=TEXT in the order of the names; first "box", a message box that has come up, and nothing behind it where
    // the dialog has gone.
    std::wstring seen = {};
    int answer = 0;
    const char* file = __builtin_FILE();
    int line = __builtin_LINE();
};

class DialogSteps : public testing::Test {
protected:
    static Act Click(int control) {
        return [=](Dialog& d) { d.Click(control); };
    }
    static Act Type(const std::wstring& text) {
        return [=](Dialog& d) { d.Type(text); };
    }
    static Act Press(WORD key, WORD held = 0) {
        return [=](Dialog& d) { held != 0 ? d.Key(key, {held}) : d.Key(key); };
    }
    static Act OnGui(const std::function<void()>& function) {
        return [=](Dialog& d) { d.OnGuiThread(function); };
    }

    // All that is seen, on the dialog's thread; "told" is what has happened since the last look.
    virtual Look LookAt(Dialog& d) = 0;

    void Go(Dialog& d, const std::vector<Step>& steps) {
        for (const Step& step : steps) {
            const auto number = testing::Message() << "step " << &step - steps.data() << " of those that end here";
            const testing::ScopedTrace trace(step.file, step.line, number);
            step.act(d);
            std::wstring seen;
            if (step.seen.starts_with(L"box="))
                seen = L" box=" + (step.answer != 0 ? d.AnswerBox(step.answer) : d.ExpectBox());
            if (IsWindow(d.Window())) seen += Changes(d);
            EXPECT_EQ(seen.substr(seen.empty() ? 0 : 1), step.seen);
        }
    }
    // What looks different since the last step, or since the dialog opened.
    std::wstring Changes(Dialog& d) {
        const Look before = std::exchange(look, Seen(d));
        std::wstring changes;
        for (const auto& [thing, text] : look) {
            if ((thing == L"told" ? L"" : before.at(thing)) != text) {
                changes.append(L" ").append(thing).append(L"=").append(text);
            }
        }
        return changes;
    }
    Look Seen(Dialog& d) {
        Look seen;
        d.OnGuiThread([&] { seen = LookAt(d); });
        return seen;
    }

    DialogDriver driver;
    Look look;
};
