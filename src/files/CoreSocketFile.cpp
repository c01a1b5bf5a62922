#include "files/CoreSocketFile.h"

IMPLEMENT_DYNAMIC(CCoreSocketFileException, CException)
IMPLEMENT_DYNAMIC(CCoreSocketFile, CVlpFile)

CCoreSocketFile::CCoreSocketFile(const CString& name, UINT flags, CSocketFileOwner* owner) : m_owner(owner) {
    CFileException problem;
    if (!CVlpFile::Open(name, flags, &problem)) {
        AfxThrowFileException(problem.m_cause, problem.m_lOsError, problem.m_strFileName);
    }
}

CCoreSocketFile::~CCoreSocketFile() {
    try {
        CCoreSocketFile::Close();
    } catch (CException* problem) {
        problem->Delete();
    }
}

void CCoreSocketFile::Close() {
    if (IsOpen()) CVlpFile::Close();
}

CString CCoreSocketFile::GetOwnerName() const {
    return m_owner != nullptr ? m_owner->name : CString();
}

void CCoreSocketFile::RegisterWithOwner(const CString& text) {
    if (m_owner != nullptr && m_owner->strings.Find(text) == nullptr) m_owner->strings.AddTail(text);
}
