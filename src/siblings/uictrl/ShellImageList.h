// Small pictures of the shell, for trees and lists.
#pragma once

#include <afxcmn.h>

#include "siblings/uictrl/Api.h"

namespace ShellIcons {

enum ShellIconId : int {
    ClosedFolder = 3,  // also stands for a registry key
};

}  // namespace ShellIcons

class UICTRL_API CShellImageList : public CImageList {
public:
    // Makes the empty list, in the system's small icon size, with that many bits per pixel; TRUE if it stands. A list
    // from before is destroyed.
    BOOL Initialize(int bitsPerPixel);
    // The index of the picture, which is added at the first demand: the shell's, or a drawn one where the shell has
    // none. -1 if the list was not initialised or the picture could not be added.
    int GetIconIndex(ShellIcons::ShellIconId id);

private:
    int m_closedFolder = -1;
};
