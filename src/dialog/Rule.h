// The rule records: each is one instruction to preserve a registry branch, a single key or a single value. A record is
// never changed after its construction, and nothing in it is checked: a key may be malformed, a position negative.
#pragma once

#include <afx.h>

// What both kinds of record hold. Abstract: only CKeyRule and CValueRule exist.
class CRule : public CObject {
public:
    CRule() = default;
    CRule(CString key, int position);
    ~CRule() override = 0;

    // The key path, "<hive>\<subkey>", with the hive's full name or its abbreviation as it was given.
    CString GetKey() const { return m_key; }
    // Where the rule stands among the rules of both kinds together: the host's number, or the row of the last OK.
    int GetPosition() const { return m_position; }

private:
    CString m_key;
    int m_position = 0;
};

class CKeyRule : public CRule {
public:
    CKeyRule(CString key, int isBranch, int position);

    // Not 0 for the key with all its sub-keys ("Branch"), 0 for the key alone ("Key"); the number as it was given.
    int IsBranch() const { return m_isBranch; }

private:
    int m_isBranch;
};

class CValueRule : public CRule {
public:
    CValueRule(CString key, CString value, int position);

    // The value's name; the key's default value is the text "(Default)" of the string table.
    CString GetValue() const { return m_value; }

private:
    CString m_value;
};
