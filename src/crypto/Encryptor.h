// The process's one encryptor.
#pragma once

#include "crypto/EncryptorBase.h"

// The types that stored data names.
constexpr int kEncryptorStandard = 1;
constexpr int kEncryptorAes256 = 6;
constexpr int kEncryptorAes256Alternate = 7;

// The encryptor of that type: the same object as long as the type asked for stays the same. Another type destroys it,
// with the key that it holds. Null for an unknown type. The object stays this function's own; one thread at a time.
EncryptorBase* GetEncryptor(int type);
