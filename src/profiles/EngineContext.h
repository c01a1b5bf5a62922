// What a host carries along while it walks the users of a machine. Each domain and user name has one entry, although
// the machine may keep several profiles of it:
//
//     CEngineContext context;
//     context.AddUserToUserList(new CHostUser(profile));    // for each profile
//     for (INT_PTR i = 0; i < context.m_users.GetCount(); ++i) Copy(*context.m_users.GetAt(i));
//     context.ClearUserList();
//
// For one thread at a time.
#pragma once

#include <afxcoll.h>
#include <afxtempl.h>

#include <memory>

#include "profiles/BvUserProfileBase.h"

class CEngineContext {
public:
    CEngineContext() = default;
    // Does not delete the users: call ClearUserList first.
    ~CEngineContext() = default;
    CEngineContext(const CEngineContext&) = delete;
    CEngineContext& operator=(const CEngineContext&) = delete;

    // Takes the user over; null is ignored, and so is one that is in the list. One whose domain and name, ignoring
    // case, are in the list already is deleted, or takes the existing entry's place at the end of the list, or becomes
    // a subordinate of it; an existing entry that loses its place is deleted or becomes the new one's subordinate. A
    // subordinate that the winner had before is forgotten, not deleted. What a destructor throws comes through, with
    // the list as it shall be.
    void AddUserToUserList(CBvUserProfileBase* newUser);

    // Deletes the users and empties the list. What a destructor throws is logged. Subordinates are left to their
    // owners.
    void ClearUserList();

    // Appends the text unless the list holds it, by exact comparison.
    void AddUniqueString(const CString& text) { AddUniqueString(text, m_stringList); }
    static void AddUniqueString(const CString& text, CStringList& list);

    // Keeps what the encryptor of that kind (crypto/Encryptor.h) makes of the text, not the text. Does nothing when
    // there is no such encryptor.
    void SetSecret(const CString& text, int kind);
    // Keeps a copy of the bytes. CMemoryException when there is no memory for it, with the old secret kept.
    void SetSecretBlob(const BYTE* bytes, DWORD size, int kind);

    // For the host: nothing in the toolkit reads these.
    BYTE m_flags[6] = {0, 0, 0, 1, 0, 0};
    std::int32_t m_number = 0;
    CString m_texts[3];

    CStringList m_stringList{10};
    CTypedPtrArray<CPtrArray, CBvUserProfileBase*> m_users;

    DWORD m_secretSize = 0;  // bytes
    std::unique_ptr<BYTE[]> m_secretData;
    int m_secretKind = 0;

private:
    void ResolveDuplicate(CBvUserProfileBase* newUser, INT_PTR index);
    INT_PTR FindDuplicate(const CBvUserProfileBase& user) const;
};
