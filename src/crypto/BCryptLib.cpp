#include "crypto/BCryptLib.h"

#include <algorithm>

const std::array<const char*, BCryptLib::EntryPointCount> BCryptLib::s_names{"BCryptCloseAlgorithmProvider",
                                                                             "BCryptCreateHash",
                                                                             "BCryptDecrypt",
                                                                             "BCryptDestroyHash",
                                                                             "BCryptDestroyKey",
                                                                             "BCryptEncrypt",
                                                                             "BCryptFinishHash",
                                                                             "BCryptGenerateSymmetricKey",
                                                                             "BCryptGetProperty",
                                                                             "BCryptHashData",
                                                                             "BCryptOpenAlgorithmProvider",
                                                                             "BCryptSetProperty"};

template <class Function, class... Arguments>
NTSTATUS BCryptLib::Call(EntryPoint entry, Arguments... arguments) const {
    const auto function = reinterpret_cast<Function>(DecodePointer(m_entryPoints[entry]));
    return function != nullptr ? function(arguments...) : kNotSupportedStatus;
}

// A null that is not encoded would decode to an address.
BCryptLib::BCryptLib() {
    m_entryPoints.fill(EncodePointer(nullptr));
}

// The provider is not closed: the library shares its AES provider between all callers of the process.
BCryptLib::~BCryptLib() {
    if (m_module != nullptr) FreeLibrary(m_module);
}

NTSTATUS BCryptLib::Load() {
    if (m_loadTried) return 0;
    m_loadTried = true;
    m_module = LoadLibraryW(L"bcrypt.dll");
    if (m_module != nullptr) {
        std::transform(s_names.begin(), s_names.end(), m_entryPoints.begin(), [this](const char* name) {
            return EncodePointer(reinterpret_cast<PVOID>(GetProcAddress(m_module, name)));
        });
    }
    return BCryptOpenAlgorithmProvider(&m_aesProvider, BCRYPT_AES_ALGORITHM, nullptr, 0);
}

NTSTATUS BCryptLib::GetObjectLength(BCRYPT_HANDLE provider, DWORD& bytes) const {
    ULONG written = 0;
    return BCryptGetProperty(provider, BCRYPT_OBJECT_LENGTH, reinterpret_cast<PUCHAR>(&bytes), sizeof(bytes), &written,
                             0);
}

NTSTATUS BCryptLib::ReadBlockLength(BCRYPT_KEY_HANDLE key) {
    ULONG written = 0;
    return BCryptGetProperty(key, BCRYPT_BLOCK_LENGTH, reinterpret_cast<PUCHAR>(&m_blockLength), sizeof(m_blockLength),
                             &written, 0);
}

NTSTATUS BCryptLib::BCryptCloseAlgorithmProvider(BCRYPT_ALG_HANDLE provider, ULONG flags) const {
    return Call<decltype(&::BCryptCloseAlgorithmProvider)>(CloseAlgorithmProvider, provider, flags);
}

NTSTATUS BCryptLib::BCryptCreateHash(BCRYPT_ALG_HANDLE provider, BCRYPT_HASH_HANDLE* hash, PUCHAR object,
                                     ULONG objectBytes, PUCHAR secret, ULONG secretBytes, ULONG flags) const {
    return Call<decltype(&::BCryptCreateHash)>(CreateHash, provider, hash, object, objectBytes, secret, secretBytes,
                                               flags);
}

NTSTATUS BCryptLib::BCryptDecrypt(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* paddingInfo,
                                  PUCHAR vector, ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written,
                                  ULONG flags) const {
    return Call<decltype(&::BCryptDecrypt)>(Decrypt, key, input, inputBytes, paddingInfo, vector, vectorBytes, output,
                                            outputBytes, written, flags);
}

NTSTATUS BCryptLib::BCryptDestroyHash(BCRYPT_HASH_HANDLE hash) const {
    return Call<decltype(&::BCryptDestroyHash)>(DestroyHash, hash);
}

NTSTATUS BCryptLib::BCryptDestroyKey(BCRYPT_KEY_HANDLE key) const {
    return Call<decltype(&::BCryptDestroyKey)>(DestroyKey, key);
}

NTSTATUS BCryptLib::BCryptEncrypt(BCRYPT_KEY_HANDLE key, PUCHAR input, ULONG inputBytes, void* paddingInfo,
                                  PUCHAR vector, ULONG vectorBytes, PUCHAR output, ULONG outputBytes, ULONG* written,
                                  ULONG flags) const {
    return Call<decltype(&::BCryptEncrypt)>(Encrypt, key, input, inputBytes, paddingInfo, vector, vectorBytes, output,
                                            outputBytes, written, flags);
}

NTSTATUS BCryptLib::BCryptFinishHash(BCRYPT_HASH_HANDLE hash, PUCHAR output, ULONG outputBytes, ULONG flags) const {
    return Call<decltype(&::BCryptFinishHash)>(FinishHash, hash, output, outputBytes, flags);
}

NTSTATUS BCryptLib::BCryptGenerateSymmetricKey(BCRYPT_ALG_HANDLE provider, BCRYPT_KEY_HANDLE* key, PUCHAR object,
                                               ULONG objectBytes, PUCHAR secret, ULONG secretBytes, ULONG flags) const {
    return Call<decltype(&::BCryptGenerateSymmetricKey)>(GenerateSymmetricKey, provider, key, object, objectBytes,
                                                         secret, secretBytes, flags);
}

NTSTATUS BCryptLib::BCryptGetProperty(BCRYPT_HANDLE object, LPCWSTR property, PUCHAR output, ULONG outputBytes,
                                      ULONG* written, ULONG flags) const {
    return Call<decltype(&::BCryptGetProperty)>(GetProperty, object, property, output, outputBytes, written, flags);
}

NTSTATUS BCryptLib::BCryptHashData(BCRYPT_HASH_HANDLE hash, PUCHAR input, ULONG inputBytes, ULONG flags) const {
    return Call<decltype(&::BCryptHashData)>(HashData, hash, input, inputBytes, flags);
}

NTSTATUS BCryptLib::BCryptOpenAlgorithmProvider(BCRYPT_ALG_HANDLE* provider, LPCWSTR algorithm, LPCWSTR implementation,
                                                ULONG flags) const {
    return Call<decltype(&::BCryptOpenAlgorithmProvider)>(OpenAlgorithmProvider, provider, algorithm, implementation,
                                                          flags);
}

NTSTATUS BCryptLib::BCryptSetProperty(BCRYPT_HANDLE object, LPCWSTR property, PUCHAR input, ULONG inputBytes,
                                      ULONG flags) const {
    return Call<decltype(&::BCryptSetProperty)>(SetProperty, object, property, input, inputBytes, flags);
}
