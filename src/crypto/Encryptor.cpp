#include "crypto/Encryptor.h"

#include <new>

#include "crypto/EncryptorAes256.h"
#include "crypto/EncryptorStandard.h"

namespace {

int s_type = 0;
// Plain, because nothing destroys the last one at exit: the libraries that it uses may be gone by then.
EncryptorBase* s_encryptor = nullptr;

EncryptorBase* MakeEncryptor(int type) {
    switch (type) {
        case kEncryptorStandard:
            return new (std::nothrow) EncryptorStandard;
        case kEncryptorAes256:
        case kEncryptorAes256Alternate:
            return new (std::nothrow) EncryptorAes256;
        default:
            return nullptr;
    }
}

}  // namespace

EncryptorBase* GetEncryptor(int type) {
    if (type == s_type) return s_encryptor;
    delete s_encryptor;
    s_type = type;
    s_encryptor = MakeEncryptor(type);
    return s_encryptor;
}
