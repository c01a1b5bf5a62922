// Capture, reading and apply beside the bare calls, and capture beside `reg export` as a process.
#include <windows.h>

#include <cstdio>
#include <psapi.h>
#include <string>
#include <vector>

#include "carry/Apply.h"
#include "carry/Capture.h"
#include "carry/OutputFile.h"
#include "carry/RegistryFileInput.h"
#include "carry/RegistryFileWriter.h"
#include "support/Ratios.h"

namespace {

constexpr wchar_t kPlace[] = L"Software\\carry-bench";
constexpr wchar_t kKey[] = L"HKEY_CURRENT_USER\\Software\\carry-bench";
constexpr int kKeys = 20000;
constexpr int kValues = 5;

std::wstring TempFile(const wchar_t* name) {
    WCHAR folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

std::wstring LeafPath(int index) {
    return std::wstring(kPlace) + L"\\branch " + std::to_wstring(index / 200) + L"\\leaf " +
           std::to_wstring(index % 200);
}

HKEY Create(const std::wstring& path) {
    HKEY key = nullptr;
    Require(RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) ==
            ERROR_SUCCESS);
    return key;
}

// What the bench makes, by the bare calls.
void MakeTree(int keys) {
    const std::wstring text = L"the text of a value";
    for (int i = 0; i < keys; ++i) {
        const HKEY key = Create(LeafPath(i));
        for (int value = 0; value < kValues; ++value) {
            const std::wstring name = L"value " + std::to_wstring(value);
            Require(RegSetValueExW(key, name.c_str(), 0, value % 2 != 0 ? REG_BINARY : REG_SZ,
                                   reinterpret_cast<const BYTE*>(text.c_str()),
                                   static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS);
        }
        RegCloseKey(key);
    }
}

void RemoveTree() {
    RemoveBranch({HKEY_CURRENT_USER, kPlace});
}

void WalkBare(HKEY key) {
    DWORD keys = 0;
    DWORD values = 0;
    DWORD longestName = 0;
    DWORD largestData = 0;
    Require(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, &longestName,
                             &largestData, nullptr, nullptr) == ERROR_SUCCESS);
    std::vector<WCHAR> name(longestName + 256);
    std::vector<BYTE> data(largestData + 1);
    for (DWORD i = 0; i < values; ++i) {
        auto length = static_cast<DWORD>(name.size());
        auto bytes = static_cast<DWORD>(data.size());
        DWORD type = 0;
        Require(RegEnumValueW(key, i, name.data(), &length, nullptr, &type, data.data(), &bytes) == ERROR_SUCCESS);
    }
    for (DWORD i = 0; i < keys; ++i) {
        auto length = static_cast<DWORD>(name.size());
        Require(RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS);
        HKEY child = nullptr;
        Require(RegOpenKeyExW(key, name.data(), 0, KEY_READ, &child) == ERROR_SUCCESS);
        WalkBare(child);
        RegCloseKey(child);
    }
}

ULONGLONG SizeOf(const std::wstring& file) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    Require(GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data));
    return data.nFileSizeLow;
}

void CaptureOurs(const std::wstring& file) {
    const RegistryTarget target;
    Capture(target, RuleSelection({{CarryKind::Branch, kKey, L""}}, FoldKeyCase), file, {.replaceFile = true});
}

void CaptureBare(const std::wstring& file, ULONGLONG bytes) {
    HKEY key = nullptr;
    Require(RegOpenKeyExW(HKEY_CURRENT_USER, kPlace, 0, KEY_READ, &key) == ERROR_SUCCESS);
    WalkBare(key);
    RegCloseKey(key);
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    const std::vector<char> block(0x10000);
    while (bytes != 0) {
        const auto part = static_cast<DWORD>(std::min<ULONGLONG>(bytes, block.size()));
        DWORD written = 0;
        Require(WriteFile(handle, block.data(), part, &written, nullptr));
        bytes -= part;
    }
    FlushFileBuffers(handle);
    CloseHandle(handle);
}

void ExportByTool(const std::wstring& file) {
    std::wstring command = std::wstring(L"reg export ") + kKey + L" \"" + file + L"\" /y";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    Require(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    WaitForSingleObject(process.hProcess, INFINITE);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

class Nothing final : public RegistryFileSink {
public:
    void OnKey(const KeyName&) override {}
    void OnKeyRemoval(const KeyName&) override {}
    void OnValue(std::wstring_view, std::uint32_t, std::span<const std::uint8_t>) override {}
    void OnValueRemoval(std::wstring_view) override {}
    void OnSkipped(SkippedLine) override { Require(false); }
};

// A registry file of so many bytes or a little more, made without much memory.
void MakeLargeFile(const std::wstring& file, ULONGLONG bytes) {
    OutputFile output(file, true);
    RegistryFileWriter writer(
        [&](std::wstring_view text) { output.Write(text.data(), text.size() * sizeof(wchar_t)); });
    const std::wstring text = L"the text of a value";
    const auto* const data = reinterpret_cast<const std::uint8_t*>(text.c_str());
    for (int key = 0; writer.Size() < bytes; ++key) {
        writer.Key(std::wstring(L"HKEY_CURRENT_USER\\") + LeafPath(key));
        for (int value = 0; value < kValues; ++value) {
            writer.Value(L"value " + std::to_wstring(value), value % 2 != 0 ? REG_BINARY : REG_SZ,
                         {data, (text.size() + 1) * sizeof(wchar_t)});
        }
    }
    writer.Finish();
    output.Finish();
}

// Reads, converts to units and looks for the ends of the lines.
void SplitBare(const std::wstring& file) {
    const HANDLE handle =
        CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    std::vector<BYTE> block(0x10000);
    std::wstring text;
    size_t lines = 0;
    for (DWORD read = 0;
         ReadFile(handle, block.data(), static_cast<DWORD>(block.size()), &read, nullptr) && read != 0;) {
        text.resize(read / 2);
        for (size_t i = 0; i < text.size(); ++i) text[i] = static_cast<wchar_t>(block[2 * i] | block[2 * i + 1] << 8);
        for (auto end = text.find(L'\n'); end != text.npos; end = text.find(L'\n', end + 1)) ++lines;
    }
    CloseHandle(handle);
    Require(lines > 1000);
}

double ApplySeconds(const std::wstring& file, const std::wstring& undo) {
    RemoveTree();
    return SecondsOf([&] {
        RegistryTarget target;
        Apply(target, file, {.undoFile = undo, .replaceFile = true});
    });
}

SIZE_T PeakBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PeakWorkingSetSize;
}

}  // namespace

int wmain() {
    const std::wstring ours = TempFile(L"carry-ours.reg");
    const std::wstring bare = TempFile(L"carry-bare.reg");
    const std::wstring undo = TempFile(L"carry-undo.reg");
    const std::wstring large = TempFile(L"carry-large.reg");
    Ratios ratios;
    // First, since a peak only grows. The working set is what Wine tells of a process.
    MakeLargeFile(large, 500ULL << 20U);
    const SIZE_T before = PeakBytes();
    {
        RegistryTarget target;
        Apply(target, large, {.dryRun = true});
    }
    std::printf("memory: reading 500 MB took %.1f MiB at most beyond %.1f\n",
                static_cast<double>(PeakBytes() - before) / (1 << 20), static_cast<double>(before) / (1 << 20));
    // Whether the measure would have seen it.
    const SIZE_T seen = PeakBytes();
    const std::vector<char> touched(64U << 20U, 'x');
    Require(touched.back() == 'x' && PeakBytes() >= seen + (32U << 20U));
    MakeLargeFile(large, 100ULL << 20U);

    RemoveTree();
    MakeTree(kKeys);
    CaptureOurs(ours);
    ratios.Compare("capturing 20,000 keys, 100,000 values", 1.2, Timed([&] { CaptureOurs(ours); }),
                   Timed([&] { CaptureBare(bare, SizeOf(ours)); }), 5);
    ratios.Compare("the same beside reg export", 0.7, Timed([&] { CaptureOurs(ours); }),
                   Timed([&] { ExportByTool(bare); }), 5);
    ratios.Compare("reading 100 MB", 2.0, Timed([&] {
                       Nothing nothing;
                       RegistryFileInput(large).Read(nothing);
                   }),
                   Timed([&] { SplitBare(large); }));
    ratios.Compare(
        "applying 20,000 keys, 100,000 values", 1.3, [&] { return ApplySeconds(ours, L""); },
        [] {
            RemoveTree();
            return SecondsOf([] { MakeTree(kKeys); });
        },
        5);
    // Over what is there already: all of it goes into the undo file.
    ratios.Compare("the same over itself, with undo", 2.3, Timed([&] {
                       RegistryTarget target;
                       Apply(target, ours, {.undoFile = undo, .replaceFile = true});
                   }),
                   Timed([] { MakeTree(kKeys); }), 5);
    ratios.Grow("capturing keys", kLinear, {5000, 10000, 20000}, [&](int keys) {
        RemoveTree();
        MakeTree(keys);
        return SecondsOf([&] { CaptureOurs(ours); });
    });
    RemoveTree();
    for (const std::wstring& file : {ours, bare, undo, large}) DeleteFileW(file.c_str());
    ratios.Print();
    return 0;
}
