#include "framework/ImageList.h"

#include <utility>

#include "framework/Temporary.h"

IMPLEMENT_DYNAMIC(CImageList, CObject)

CImageList* CImageList::FromHandle(HIMAGELIST list) {
    return afx::MakeTemporary<CImageList>(list);
}

BOOL CImageList::Attach(HIMAGELIST list) {
    if (list == nullptr || m_hImageList != nullptr) return FALSE;
    m_hImageList = list;
    return TRUE;
}

HIMAGELIST CImageList::Detach() {
    return std::exchange(m_hImageList, nullptr);
}

BOOL CImageList::DeleteImageList() {
    return m_hImageList != nullptr && ::ImageList_Destroy(Detach());
}
