// Lays down a new user's profile from a template directory.
//
//     class CShownCreator : public CProfileCreator {
//         void OnCopying(const CString& source, const CString&) override { ShowInStatusBar(source); }
//     };
//
//     CShownCreator creator;
//     CProfileUser user(sid);
//     CString problem;
//     if (!creator.CopyFilesAndFolders(pattern, target, pattern, target, user, problem, true)) Show(problem);
#pragma once

#include <afx.h>

#include <vector>

// Texts that the host's string table holds: formats of a junction's path, its target (%s) and an error (%u), and the
// text that a file could not be copied. Without them the words name the missing number.
constexpr UINT kJunctionNotCreatedText = 25;
constexpr UINT kFileNotCopiedText = 271;

// The user who is to own a profile, by his SID.
class CProfileUser {
public:
    // Copies the SID, which must be a valid one.
    explicit CProfileUser(PSID sid);

    PSID GetSid() { return m_sid.data(); }
    // "S-1-5-...", made at the first call; empty when the system cannot make it.
    const CString& GetSidText();

private:
    std::vector<BYTE> m_sid;
    CString m_sidText;
};

class CProfileCreator {
public:
    virtual ~CProfileCreator() = default;

    // Copies the tree at `source` to `target`, which is created in a directory that is there, and gives the user full
    // access to every file and directory that it lays down. Files that the target has already stay as they are, and the
    // user gets access to them. Junctions stay junctions and are never entered: one that leads to somewhere below
    // `originalSource` leads below `originalTarget` in the copy, any other to where it led. Of a junction's attributes
    // hidden is kept, and system above Windows 6.0.
    //
    // `source` and `target` are those of the step, `originalSource` and `originalTarget` the roots of the whole copy,
    // so a host passes each twice. The last argument makes no difference.
    //
    // False at the first file, directory or junction that cannot be copied: what was done stays, the rest is not tried,
    // and `errorText` has the words for the user. A directory whose attributes cannot be set leaves words, too, beside
    // true. The last error is that of what failed. Paths have at least 4 characters and no zero inside. A link whose
    // target cannot be read cannot be copied. A heap CFileException goes through
    // when the security of something that was laid down cannot be read.
    bool CopyFilesAndFolders(const CString& source, const CString& target, const CString& originalSource,
                             const CString& originalTarget, CProfileUser& user, CString& errorText, bool recursive);

protected:
    // Before each directory, file and junction, for a host that shows how far the copy is. May throw, which ends it.
    virtual void OnCopying(const CString& source, const CString& target);

private:
    // What stays the same for the whole copy.
    struct Copy {
        const CString& originalSource;
        const CString& originalTarget;
        CProfileUser& user;
        CString& errorText;
    };

    bool CopyTree(const Copy& copy, const CString& source, const CString& target);
    bool CopyEntries(const Copy& copy, const CString& source, const CString& target);
    bool CopyDirectoryEntry(const Copy& copy, const CString& source, const CString& target);
    bool CopyFileEntry(const Copy& copy, const CString& source, const CString& target);
    bool CopyJunction(const Copy& copy, const CString& source, const CString& target);
};
