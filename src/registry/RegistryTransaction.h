// A kernel transaction that registry keys may be opened in:
//
//     CRegistryTransaction transaction(CreateTransaction(...), FALSE);
//     CRegistryHelper key;
//     key.m_pTM = &transaction;    // from now on Open and Create go through it
#pragma once

#include <atlbase.h>

class CRegistryTransaction : public CAtlTransactionManager {
public:
    // Takes over the handle, which is closed at the end; null when no transaction runs. `fallback` says whether plain
    // calls are allowed then; otherwise they answer ERROR_INVALID_FUNCTION.
    CRegistryTransaction(HANDLE transaction, BOOL fallback) : CAtlTransactionManager(fallback, FALSE) {
        m_hTransaction = transaction;
    }
};
