// The picture that floats under the cursor while a tree item is dragged.
#pragma once

#include <afxcmn.h>

// A list with one image of the item, made by the tree or, where the tree makes none, from the item's icon and text.
// The caller owns it. Null when there is nothing to show.
CImageList* MakeDragImage(CTreeCtrl& tree, HTREEITEM item);
