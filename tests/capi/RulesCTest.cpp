// What callers of the C interface do wrong, and what they get for it. What they do right is shown by
// scripts/check-c-hosts.
#include <windows.h>

#include <gtest/gtest.h>
#include <registry_rules.h>
#include <string>
#include <thread>

#include "resources/resource.h"
#include "support/DialogDriver.h"
#include "support/FileBytes.h"
#include "support/ScopedRegistryKey.h"
#include "support/ScopedTestDir.h"

namespace {

class RulesC : public testing::Test {
protected:
    RulesC() { rr_rules_create(&m_rules); }
    ~RulesC() override { rr_rules_close(m_rules); }

    static std::wstring Error() {
        wchar_t text[500] = L"";
        size_t length = 0;
        EXPECT_EQ(rr_last_error(text, 500, &length), RR_OK);
        return text;
    }
    rr_status AddKey(const wchar_t* key, size_t length) { return rr_rules_add_key(m_rules, key, length, 1, 0); }

    rr_rules m_rules = nullptr;
    size_t m_length = 99, m_other = 99;
    wchar_t m_text[20] = L"untouched";
};

TEST_F(RulesC, WhatIsNoHandleOrNoPointerIsRefused) {
    rr_rules closed = nullptr;
    ASSERT_EQ(rr_rules_create(&closed), RR_OK);
    ASSERT_EQ(rr_rules_close(closed), RR_OK);
    int32_t answer = 99;
    for (const rr_rules handle :
         {rr_rules(), closed, reinterpret_cast<rr_rules>(&answer), rr_rules(INVALID_HANDLE_VALUE)}) {
        EXPECT_EQ(rr_rules_close(handle), RR_E_HANDLE);
        EXPECT_EQ(rr_rules_clear(handle), RR_E_HANDLE);
        EXPECT_EQ(rr_rules_add_key(handle, L"a", 1, 0, 0), RR_E_HANDLE);
        EXPECT_EQ(rr_rules_count(handle, &m_length, &m_other), RR_E_HANDLE);
        EXPECT_EQ(rr_rules_get_key(handle, 0, m_text, 20, &m_length, nullptr, nullptr), RR_E_HANDLE);
        EXPECT_EQ(rr_show(handle, nullptr, &answer), RR_E_HANDLE);
        EXPECT_EQ(rr_list(handle, nullptr, nullptr, nullptr), RR_E_HANDLE);
        EXPECT_EQ(rr_check(handle, nullptr, nullptr, nullptr), RR_E_HANDLE);
        EXPECT_EQ(rr_capture(handle, nullptr, L"a", 1, 0, nullptr, nullptr), RR_E_HANDLE);
    }
    EXPECT_EQ(Error(), L"this is not the handle of an open rule set");
    EXPECT_EQ(rr_rules_create(nullptr), RR_E_NULL);
    EXPECT_EQ(rr_rules_count(m_rules, &m_length, nullptr), RR_E_NULL);
    EXPECT_EQ(rr_show(m_rules, nullptr, nullptr), RR_E_NULL);
    EXPECT_EQ(rr_windows_version(nullptr), RR_E_NULL);
    EXPECT_EQ(rr_expand_path(L"a", 1, m_text, 20, nullptr), RR_E_NULL);
    EXPECT_EQ(rr_expand_path(L"a", 1, nullptr, 1, &m_length), RR_E_NULL);
    EXPECT_TRUE(m_length == 99 && answer == 99);
}

TEST_F(RulesC, TextsGoInAndOutWholeOrNotAtAll) {
    const std::wstring longest(32767, L'k');
    const std::wstring tooLong = longest + L"k";
    const struct {
        const wchar_t* text;
        size_t length;
        rr_status status;
    } rows[] = {
        {nullptr, 0, RR_OK},
        {L"a\xD83D", 2, RR_OK},
        {L"abc", 1, RR_OK},
        {longest.c_str(), RR_TERMINATED, RR_OK},
        {nullptr, 1, RR_E_NULL},
        {nullptr, RR_TERMINATED, RR_E_NULL},
        {L"a\0b", 3, RR_E_TEXT},
        {tooLong.c_str(), RR_TERMINATED, RR_E_TEXT},
        {L"a", size_t{1} << 31, RR_E_TEXT},
        {L"a", RR_TERMINATED - 1, RR_E_TEXT},
    };
    for (const auto& row : rows) EXPECT_EQ(AddKey(row.text, row.length), row.status) << row.length;
    EXPECT_EQ(rr_rules_add_value(m_rules, L"k", 1, (longest).c_str(), 16384, 0), RR_E_TEXT);
    for (const int32_t position : {-1, 32768})
        EXPECT_EQ(rr_rules_add_key(m_rules, L"k", 1, 1, position), RR_E_ARGUMENT);
    ASSERT_EQ(rr_rules_add_value(m_rules, L"key", 3, L"value", RR_TERMINATED, 32767), RR_OK);
    ASSERT_EQ(rr_rules_count(m_rules, &m_length, &m_other), RR_OK);
    EXPECT_TRUE(m_length == 4 && m_other == 1);

    EXPECT_EQ(rr_rules_get_key(m_rules, 1, m_text, 2, &m_length, nullptr, nullptr), RR_E_BUFFER);
    EXPECT_EQ(std::wstring(m_text), L"untouched");
    EXPECT_EQ(rr_rules_get_key(m_rules, 1, m_text, 3, &m_length, nullptr, nullptr), RR_OK);
    EXPECT_EQ(std::wstring(m_text), L"a\xD83D");
    EXPECT_EQ(rr_rules_get_key(m_rules, 4, m_text, 20, &m_length, nullptr, nullptr), RR_E_INDEX);
    wchar_t value[6];
    int32_t row = 0;
    EXPECT_EQ(rr_rules_get_value(m_rules, 0, m_text, 20, &m_length, value, 5, &m_other, &row), RR_E_BUFFER);
    EXPECT_TRUE(m_length == 3 && m_other == 5 && std::wstring(m_text) == L"a\xD83D");
    EXPECT_EQ(rr_rules_get_value(m_rules, 0, m_text, 20, &m_length, value, 6, &m_other, &row), RR_OK);
    EXPECT_TRUE(std::wstring(m_text) == L"key" && std::wstring(value) == L"value" && row == 32767);
    EXPECT_EQ(rr_expand_path(L"%SystemDrive%\\a", RR_TERMINATED, m_text, 20, &m_length), RR_OK);
    EXPECT_EQ(std::wstring(m_text), L"C:\\a");
    EXPECT_EQ(rr_profile_path(L"S-1-5-21-0", RR_TERMINATED, m_text, 20, &m_length), RR_E_FAILED);
}

TEST_F(RulesC, StructsOfOtherSizesAndUnknownWishesAreRefused) {
    struct {
        rr_version known;
        uint64_t unknown;
    } newer{};
    const auto ask = [&](size_t size) {
        newer.known.size = size;
        return rr_windows_version(&newer.known);
    };
    for (const size_t size : {size_t{0}, sizeof(rr_version) - 1, size_t{5000}}) EXPECT_EQ(ask(size), RR_E_SIZE);
    EXPECT_EQ(ask(sizeof(newer)), RR_OK);
    EXPECT_TRUE(newer.known.size == sizeof(newer) && newer.known.major >= 6 && newer.unknown == 0);
    struct {
        rr_target known;
        uint64_t unknown;
    } target{};
    target.known.size = sizeof(target);
    EXPECT_EQ(rr_list(m_rules, &target.known, nullptr, nullptr), RR_OK);
    target.known.drive = '1';
    EXPECT_EQ(rr_list(m_rules, &target.known, nullptr, nullptr), RR_E_ARGUMENT);
    target.unknown = 1;
    EXPECT_EQ(rr_list(m_rules, &target.known, nullptr, nullptr), RR_E_SIZE);
    EXPECT_EQ(rr_capture(m_rules, nullptr, L"a", 1, RR_DRY_RUN, nullptr, nullptr), RR_E_ARGUMENT);
    EXPECT_EQ(rr_capture(m_rules, nullptr, nullptr, 0, 0, nullptr, nullptr), RR_E_ARGUMENT);
    EXPECT_EQ(rr_apply(nullptr, L"a", 1, nullptr, 0, 0, nullptr, nullptr), RR_E_ARGUMENT);
}

// What a callback is told and does.
struct Told {
    rr_rules rules;
    std::wstring text;
    int calls = 0, cancelAt = 0, throwAt = 0;

    int32_t Call(const std::wstring& what) {
        text += what + L"|";
        if (++calls == throwAt) throw calls;
        rr_rules_add_key(rules, L"x", 1, 0, 0);  // the library may be called
        return calls != cancelAt;
    }
};

TEST_F(RulesC, CallbacksAreToldAllAndMayCancelThrowAndCallBack) {
    ScopedRegistryKey key;
    key.SetText(L"", L"v", L"1");
    const std::wstring path = L"HKEY_CURRENT_USER\\" + key.Path();
    const rr_callbacks callbacks{
        sizeof(rr_callbacks), nullptr,
        [](void* told, const rr_progress* at) {
            return static_cast<Told*>(told)->Call(L"at " + std::wstring(at->path, at->path_length));
        },
        [](void* told, const rr_note* note) {
            return static_cast<Told*>(told)->Call(L"note " + std::to_wstring(note->kind * 100 + note->flaw * 10) +
                                                  (note->is_value_rule != 0 ? L" v" : L" k") +
                                                  std::to_wstring(note->rule));
        },
        [](void* told, const rr_item* item) {
            return static_cast<Told*>(told)->Call(
                item->value == nullptr ? L"key" : L"value " + std::wstring(item->value, item->value_length));
        }};
    rr_report report{};
    report.size = sizeof(report);
    const auto work = [&](auto function, Told told) {
        rr_rules_clear(m_rules);
        AddKey(path.c_str(), RR_TERMINATED);
        rr_rules_add_value(m_rules, path.c_str(), RR_TERMINATED, L"v", 1, 0);
        rr_rules_add_value(m_rules, (path + L"\\none").c_str(), RR_TERMINATED, L"", 0, 0);
        told.rules = m_rules;
        rr_callbacks with = callbacks;
        with.context = &told;
        const rr_status status = function(m_rules, nullptr, &with, &report);
        return std::to_wstring(status) + L": " + told.text;
    };
    EXPECT_EQ(work(rr_list, {}), L"1: at " + path + L"|key|value v|note 640 v0|note 640 v1|");
    EXPECT_TRUE(report.keys == 1 && report.values == 1 && report.bytes == 4 && report.notes == 2);
    EXPECT_EQ(work(rr_check, {}), L"1: note 640 v0|note 640 v1|note 0 v1|");
    EXPECT_EQ(work(rr_check, {.rules = nullptr, .text = {}, .cancelAt = 1}), L"1: note 640 v0|");
    EXPECT_EQ(report.notes, 3U);
    for (int at = 1; at <= 3; ++at) {
        EXPECT_TRUE(work(rr_list, {.rules = nullptr, .text = {}, .cancelAt = at}).starts_with(L"-14: ")) << at;
        EXPECT_TRUE(work(rr_list, {.rules = nullptr, .text = {}, .throwAt = at}).starts_with(L"-14: ")) << at;
    }
    EXPECT_EQ(Error(), path + L": cancelled");

    const ScopedTestDir folder;
    const std::wstring file = folder.Path(L"a.reg"), undo = folder.Path(L"undo.reg");
    const auto capture = [&](uint32_t flags) {
        return rr_capture(m_rules, nullptr, file.c_str(), file.size(), flags, nullptr, nullptr);
    };
    const auto apply = [&](uint32_t flags) {
        return rr_apply(nullptr, file.c_str(), file.size(), undo.c_str(), undo.size(), flags, nullptr, &report);
    };
    EXPECT_EQ(capture(0), RR_TOLD);
    EXPECT_EQ(capture(0), RR_E_REFUSED);
    EXPECT_EQ(capture(RR_REPLACE), RR_TOLD);
    EXPECT_EQ(apply(RR_DRY_RUN), RR_OK);
    EXPECT_EQ(BytesOf(undo), "");
    EXPECT_EQ(apply(0), RR_OK);
    EXPECT_NE(BytesOf(undo), "");
    EXPECT_EQ(apply(0), RR_E_REFUSED);
    EXPECT_EQ(Error(), undo + L": the file exists (File exists)");
    PutBytes(file, "REGEDIT4\r\n[-HKEY_CURRENT_USER]\r\n");
    EXPECT_EQ(apply(RR_NO_UNDO), RR_E_REFUSED);
    PutBytes(file, "no such file");
    EXPECT_EQ(apply(RR_NO_UNDO), RR_E_FORMAT);
    EXPECT_EQ(Error(), file + L": line 1: this is no registry file of version 5.00 or 4");
}

TEST_F(RulesC, OneDialogAtATimeOfAWindowThatIsThere) {
    const auto window = [] {
        return CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPED, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    };
    const HWND gone = window();
    DestroyWindow(gone);
    int32_t answer = 99;
    EXPECT_EQ(rr_show(m_rules, gone, &answer), RR_E_WINDOW);
    const HWND owner = window();
    std::thread([&] { EXPECT_EQ(rr_show(m_rules, owner, &answer), RR_E_WINDOW); }).join();
    EXPECT_EQ(answer, 99);
    AddKey(L"HKCU\\a", RR_TERMINATED);
    HWND seen = nullptr;
    const auto show = [&](int button) {
        const auto work = [&] { EXPECT_EQ(rr_show(m_rules, owner, &answer), RR_OK); };
        DialogDriver().Run(work, [&](Dialog& d) {
            int32_t none = 99;
            EXPECT_EQ(rr_show(m_rules, nullptr, &none), RR_E_BUSY);
            seen = GetWindow(GetForegroundWindow(), GW_OWNER);
            rr_rules_clear(m_rules);  // the dialog has its own copy
            d.Click(IDC_NEW_KEY);
            d.Type(L"hkcu\\b\r");
            d.Click(button);
            if (button == IDCANCEL) d.AnswerBox(IDYES);
        });
        rr_rules_count(m_rules, &m_length, &m_other);
    };
    show(IDCANCEL);
    EXPECT_TRUE(answer == RR_UNCHANGED && m_length == 0 && seen == owner);
    show(IDOK);
    EXPECT_TRUE(answer == RR_CHANGED && m_length == 1);
    EXPECT_EQ(rr_rules_get_key(m_rules, 0, m_text, 20, &m_length, nullptr, nullptr), RR_OK);
    EXPECT_EQ(std::wstring(m_text), L"HKEY_CURRENT_USER\\b");
    DestroyWindow(owner);
}

}  // namespace
