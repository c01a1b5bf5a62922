// A hive file of another user or installation, mounted as long as the object lives.
//
// What is mounted is a copy, as the toolkit always does, so the file itself stays as it is until WriteBack.
#pragma once

#include <afx.h>

#include <string>

class HiveMount {
public:
    // `root` is HKEY_LOCAL_MACHINE or HKEY_USERS, `name` the key that is made below it. Takes the privileges for it.
    // Throws CarryException when the file is not there, in use, or no hive.
    HiveMount(HKEY root, std::wstring name, std::wstring file);
    // Every key of the hive must be closed.
    ~HiveMount();
    HiveMount(const HiveMount&) = delete;
    HiveMount& operator=(const HiveMount&) = delete;

    const std::wstring& Name() const { return m_name; }
    const std::wstring& File() const { return m_file; }

    void NoteChange() { m_isChanged = true; }
    bool IsChanged() const { return m_isChanged; }
    // Saves the hive as it now is and puts it in the file's place in one step. Throws CarryException, with the file as
    // it was.
    void WriteBack() const;

private:
    void RemoveCopy();

    HKEY m_root;
    std::wstring m_name;
    std::wstring m_file;
    CString m_copy;
    bool m_isChanged = false;
};
