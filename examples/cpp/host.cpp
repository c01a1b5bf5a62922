// A host in C++ by a compiler that shares nothing with the library's: no runtime, no exceptions, no standard library.
// It captures what its rules select and shows how far it is. Built as
//     clang++ --target=x86_64-pc-windows-msvc ... host.cpp, lld-link host.obj RulesC.lib kernel32.lib
#include <registry-rules/registry_rules.h>

extern "C" {
__declspec(dllimport) void* __stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void* file, const void* data, unsigned long size, unsigned long* written,
                                              void* overlapped);
__declspec(dllimport) __declspec(noreturn) void __stdcall ExitProcess(unsigned int code);
}

namespace {

// A rule set that closes itself.
class Rules {
public:
    Rules() { rr_rules_create(&m_handle); }
    ~Rules() { rr_rules_close(m_handle); }
    Rules(const Rules&) = delete;
    Rules& operator=(const Rules&) = delete;

    operator rr_rules() const { return m_handle; }

private:
    rr_rules m_handle = nullptr;
};

// ASCII is enough here.
void Print(const wchar_t* text, size_t length) {
    char line[200];
    unsigned long size = 0;
    while (size < length && size < sizeof(line) - 1) {
        line[size] = static_cast<char>(text[size]);
        ++size;
    }
    line[size++] = '\n';
    WriteFile(GetStdHandle(static_cast<unsigned long>(-11)), line, size, &size, nullptr);
}

int32_t OnProgress(void* keys, const rr_progress* progress) {
    ++*static_cast<int*>(keys);
    Print(progress->path, progress->path_length);
    return 1;
}

unsigned int Run() {
    const Rules rules;
    rr_rules_add_key(rules, L"HKCU\\Environment", RR_TERMINATED, 0, 0);
    int keys = 0;
    const rr_callbacks callbacks{sizeof(rr_callbacks), &keys, OnProgress, nullptr, nullptr};
    rr_report report{};
    report.size = sizeof(report);
    if (rr_capture(rules, nullptr, L"captured.reg", RR_TERMINATED, RR_REPLACE, &callbacks, &report) < RR_OK) {
        wchar_t text[200];
        size_t length = 0;
        if (rr_last_error(text, 200, &length) == RR_OK) Print(text, length);
        return 1;
    }
    Print(L"captured", 8);
    return keys == 1 && report.keys == 1 ? 0 : 2;
}

}  // namespace

extern "C" void mainCRTStartup() {
    ExitProcess(Run());
}
