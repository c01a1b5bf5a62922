// Registry, process and cryptography.
#include <afx.h>
#include <bcrypt.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <ktmw32.h>
#include <stdexcept>

#include "ProbeRows.h"
#include "helpers/UniqueHandle.h"
#include "registry/WindowsVersion.h"

namespace {

std::string Transactions(const ProbePlace& place) {
    const auto transaction = MakeUniqueHandle(CreateTransaction(nullptr, nullptr, 0, 0, 0, 0, nullptr));
    if (!transaction) return YesOrStatus(false);
    HKEY key = nullptr;
    const LONG status = RegCreateKeyTransactedW(place.key, L"transacted", 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                                nullptr, transaction.get(), nullptr);
    if (status != ERROR_SUCCESS) return "no (" + std::to_string(status) + ")";
    RegCloseKey(key);
    RollbackTransaction(transaction.get());
    return RegOpenKeyExW(place.key, L"transacted", 0, KEY_READ, &key) == ERROR_SUCCESS ? "not taken back" : "yes";
}

std::string SymbolicLinks(const ProbePlace& place) {
    HKEY key = nullptr;
    const LONG status = RegCreateKeyExW(place.key, L"link", 0, nullptr, REG_OPTION_CREATE_LINK | REG_OPTION_VOLATILE,
                                        KEY_WRITE | KEY_CREATE_LINK, nullptr, &key, nullptr);
    if (status != ERROR_SUCCESS) return "no (" + std::to_string(status) + ")";
    RegCloseKey(key);
    return "yes";
}

std::string HiveWithoutPrivilege(const ProbePlace& place) {
    const LONG status = RegSaveKeyW(place.key, place.File(L"hive").c_str(), nullptr);
    return "status " + std::to_string(status);
}

std::string Version(const ProbePlace&) {
    const SystemVersion version = CWindowsVersion::GetVersion();
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." + std::to_string(version.build);
}

std::string Priorities(const ProbePlace&) {
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
    const int priority = GetThreadPriority(GetCurrentThread());
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_NORMAL);
    return std::to_string(priority);
}

std::string ShortSleep(const ProbePlace&) {
    LARGE_INTEGER frequency{}, start{}, end{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    for (int i = 0; i < 50; ++i) Sleep(1);
    QueryPerformanceCounter(&end);
    return std::to_string((end.QuadPart - start.QuadPart) * 20000 / frequency.QuadPart) + " microseconds";
}

// A key that encrypts by the system's AES, chained, with no vector given.
class Aes {
public:
    Aes() {
        std::array<UCHAR, 16> secret{};
        Check(BCryptOpenAlgorithmProvider(&m_provider, BCRYPT_AES_ALGORITHM, nullptr, 0));
        Check(BCryptGenerateSymmetricKey(m_provider, &m_key, nullptr, 0, secret.data(), secret.size(), 0));
    }
    ~Aes() {
        if (m_key != nullptr) BCryptDestroyKey(m_key);
        if (m_provider != nullptr) BCryptCloseAlgorithmProvider(m_provider, 0);
    }
    Aes(const Aes&) = delete;
    Aes& operator=(const Aes&) = delete;

    using Block = std::array<UCHAR, 16>;

    // The first block of what zeros become.
    Block Encrypt(ULONG flags) {
        Block input{};
        std::array<UCHAR, 32> output{};
        ULONG written = 0;
        Check(BCryptEncrypt(m_key, input.data(), input.size(), nullptr, nullptr, 0, output.data(), output.size(),
                            &written, flags));
        Block first{};
        std::memcpy(first.data(), output.data(), first.size());
        return first;
    }
    NTSTATUS DecryptPadded(Block input) {
        Block output{};
        ULONG written = 0;
        return BCryptDecrypt(m_key, input.data(), input.size(), nullptr, nullptr, 0, output.data(), output.size(),
                             &written, BCRYPT_BLOCK_PADDING);
    }

private:
    static void Check(NTSTATUS status) {
        if (status < 0) throw std::runtime_error("a call of the cryptographic library failed");
    }

    BCRYPT_ALG_HANDLE m_provider = nullptr;
    BCRYPT_KEY_HANDLE m_key = nullptr;
};

std::string Chaining(ULONG flags) {
    const Aes::Block alone = Aes().Encrypt(0);
    Aes aes;
    aes.Encrypt(0);
    return aes.Encrypt(flags) == alone ? "begins anew" : "goes on";
}

std::string ChainOfBlocks(const ProbePlace&) {
    return Chaining(0);
}

std::string ChainOfPadded(const ProbePlace&) {
    return Chaining(BCRYPT_BLOCK_PADDING);
}

std::string WrongPadding(const ProbePlace&) {
    Aes aes;
    char text[16];
    std::snprintf(text, sizeof(text), "0x%08lX", static_cast<unsigned long>(aes.DecryptPadded({1})));
    return text;
}

// A DLL of ours is planted, under a name that nobody has.
std::string PlantedLibrary(const ProbePlace& place) {
    const std::filesystem::path before = std::filesystem::current_path();
    wchar_t ours[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"ZmCoreSv.dll"), ours, MAX_PATH);
    std::filesystem::copy_file(ours, place.File(L"planted.dll"));
    std::filesystem::current_path(place.folder);
    const HMODULE planted = LoadLibraryW(L"planted.dll");
    std::string seen = YesOrStatus(planted != nullptr);
    std::filesystem::current_path(before);
    if (planted != nullptr) FreeLibrary(planted);
    return seen;
}

constexpr ProbeRow kRows[] = {
    {37, "a key made in a transaction is taken back", Transactions, "yes", "no (120)"},
    {38, "a hive saved without a privilege", HiveWithoutPrivilege, "status 1314", "status 1314"},
    {46, "the version that this program is told", Version, nullptr, nullptr},
    {48, "a thread's priority, lowered", Priorities, "-1", "-1"},
    {49, "Sleep(1)", ShortSleep, nullptr, nullptr},
    {51, "AES without a vector, a full block after another", ChainOfBlocks, "goes on", "goes on"},
    {51, "AES without a vector, a padded call after a block", ChainOfPadded, "begins anew", "begins anew"},
    {52, "padding that makes no sense", WrongPadding, "0xC000003E", "0xC0000001"},
    {53, "a symbolic link between keys is made", SymbolicLinks, "yes", "yes"},
    {54, "a DLL in the current folder is loaded", PlantedLibrary, "no (126)", "no (126)"},
};

}  // namespace

std::span<const ProbeRow> SystemRows() {
    return kRows;
}
