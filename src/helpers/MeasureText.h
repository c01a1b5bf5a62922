// The size of a text on a device.
#pragma once

#include <afxwin.h>

// Width and height of `text` as one line in the font of `dc`, in its logical units, each at least that of `minimum`. A
// null `dc` or `text` gives 0, 0, whatever the minimum.
CSize MeasureText(CDC* dc, const CString* text, CSize minimum = CSize(0, 0));
