// The platform's cryptographic library, bound at run time, so that a system without it still loads this one.
#pragma once

#include <windows.h>
#include <bcrypt.h>

#include <array>

// What a call gives whose entry point is missing.
constexpr NTSTATUS kNotSupportedStatus = static_cast<NTSTATUS>(0xC00000BB);

class BCryptLib {
public:
    BCryptLib();
    // Frees the library.
    virtual ~BCryptLib();
    BCryptLib(const BCryptLib&) = delete;
    BCryptLib& operator=(const BCryptLib&) = delete;

    // Loads the library and opens its AES provider; 0xC00000BB when there is none. Tried once: every later call returns
    // 0, also after a failure, and then the members below answer 0xC00000BB.
    NTSTATUS Load();

    // The provider's "ObjectLength" in bytes: the size of the buffer that a key or hash of it needs.
    NTSTATUS GetObjectLength(BCRYPT_HANDLE provider, DWORD& bytes) const;

    // Null before Load. Owned by this object.
    BCRYPT_ALG_HANDLE AesProvider() const { return m_aesProvider; }
    // Stores the "BlockLength" of a key, in bytes.
    NTSTATUS ReadBlockLength(BCRYPT_KEY_HANDLE key);

    // The library's functions under their own names and with their own results.
    NTSTATUS BCryptCloseAlgorithmProvider(BCRYPT_ALG_HANDLE provider, ULONG flags) const;
    NTSTATUS BCryptCreateHash(BCRYPT_ALG_HANDLE provider, BCRYPT_HASH_HANDLE* hash, PUCHAR object, ULONG objectBytes,
                              PUCHAR secret, ULONG secretBytes, ULONG flags) const;
    NTSTATUS BCryptDecrypt(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* paddingInfo, PUCHAR vector,
                           ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written, ULONG flags) const;
    NTSTATUS BCryptDestroyHash(BCRYPT_HASH_HANDLE hash) const;
    NTSTATUS BCryptDestroyKey(BCRYPT_KEY_HANDLE key) const;
    NTSTATUS BCryptEncrypt(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* paddingInfo, PUCHAR vector,
                           ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written, ULONG flags) const;
    NTSTATUS BCryptFinishHash(BCRYPT_HASH_HANDLE hash, PUCHAR output, ULONG outputBytes, ULONG flags) const;
    NTSTATUS BCryptGenerateSymmetricKey(BCRYPT_ALG_HANDLE provider, BCRYPT_KEY_HANDLE* key, PUCHAR object,
                                        ULONG objectBytes, PUCHAR secret, ULONG secretBytes, ULONG flags) const;
    NTSTATUS BCryptGetProperty(BCRYPT_HANDLE object, LPCWSTR property, PUCHAR output, ULONG outputBytes, ULONG* written,
                               ULONG flags) const;
    NTSTATUS BCryptHashData(BCRYPT_HASH_HANDLE hash, PUCHAR input, ULONG inputBytes, ULONG flags) const;
    NTSTATUS BCryptOpenAlgorithmProvider(BCRYPT_ALG_HANDLE* provider, LPCWSTR algorithm, LPCWSTR implementation,
                                         ULONG flags) const;
    NTSTATUS BCryptSetProperty(BCRYPT_HANDLE object, LPCWSTR property, PUCHAR input, ULONG inputBytes,
                               ULONG flags) const;

private:
    // In the order of s_names.
    enum EntryPoint {
        CloseAlgorithmProvider,
        CreateHash,
        Decrypt,
        DestroyHash,
        DestroyKey,
        Encrypt,
        FinishHash,
        GenerateSymmetricKey,
        GetProperty,
        HashData,
        OpenAlgorithmProvider,
        SetProperty,
        EntryPointCount
    };
    static const std::array<const char*, EntryPointCount> s_names;

    template <class Function, class... Arguments>
    NTSTATUS Call(EntryPoint entry, Arguments... arguments) const;

    bool m_loadTried = false;
    HMODULE m_module = nullptr;
    std::array<PVOID, EntryPointCount> m_entryPoints{};  // encoded, missing ones too
    BCRYPT_ALG_HANDLE m_aesProvider = nullptr;
    ULONG m_blockLength = 0;
};
