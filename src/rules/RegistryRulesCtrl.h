// The rule editor, and the library's whole interface. A host makes one, hands in the rules that it holds, shows the
// dialog and reads the edited rules back:
//
//     CRegistryRulesCtrl editor;
//     editor.AddKeyRule(L"HKCU\\Software\\Contoso", 1, 0);
//     editor.AddValueRule(L"HKCU\\Environment", L"TEMP", 1);
//     if (editor.Show() == 1) {
//         for (long i = 0; i < editor.GetKeyRuleCount(); ++i) {
//             CString key;
//             int isBranch = 0;
//             long position = 0;
//             editor.GetKeyRule(i, key, &isBranch, &position);
//         }
//     }
//
// The rules are one set for the whole process: every object of this class works on the same rules, and the destructor
// of any of them removes them all. All calls come from one thread, which must be able to own windows.
#pragma once

#include <afx.h>

class CRegistryRulesDlg;

class CRegistryRulesCtrl final {
public:
    // No window exists until Show.
    CRegistryRulesCtrl();
    // Removes all rules, also those that another object of this class sees.
    ~CRegistryRulesCtrl();
    CRegistryRulesCtrl(const CRegistryRulesCtrl&) = delete;
    // Shares the dialog of `other` and loses the own one. Both destructors then delete the same dialog, so a host must
    // not let both run.
    CRegistryRulesCtrl& operator=(const CRegistryRulesCtrl& other);

    // Appends a rule for a key: not 0 in `isBranch` for the key with its sub-keys, 0 for the key alone. `key` is
    // "<hive>\<subkey>" with the hive's full name or its abbreviation ("HKCU"); it is not checked, and null makes it
    // empty. `position` is the row, counted from 0 over both kinds of rules, where the rule is to stand in the list;
    // one beyond the end means the end. Always 1.
    int AddKeyRule(const wchar_t* key, int isBranch, short position);
    // Appends a rule for one value of a key, as above. An empty or null `value` means the key's default value.
    // Always 1.
    int AddValueRule(const wchar_t* key, const wchar_t* value, short position);

    // The number of key rules, whether with or without sub-keys.
    long GetKeyRuleCount();
    long GetValueRuleCount();

    // Reads one rule; `index` counts from 0 within one kind. 1 and the outputs filled; or 0 and the outputs untouched
    // when `index` is beyond the end. A negative `index` raises CInvalidArgException*, which the caller deletes by
    // Delete(). `isBranch` and `position` must not be null. After an OK of the dialog, keys have the hive's full name,
    // `isBranch` is 1 or 0, and `position` is the row; before, all is as it was added. The default value has an empty
    // name.
    int GetKeyRule(long index, CString& key, int* isBranch, long* position);
    int GetValueRule(long index, CString& key, CString& value, long* position);

    // Shows the dialog and returns when it has ended: 1 when the user pressed OK and rows were changed, otherwise 0.
    // May be called again.
    long Show();

private:
    CRegistryRulesDlg* m_dialog;
};
