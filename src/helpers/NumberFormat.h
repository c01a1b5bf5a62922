// Numbers and sizes as the system's locale writes them. The locale is read at first use and kept; for one thread at a
// time.
#pragma once

#include <afx.h>

// Whole numbers without a fraction, FormatDecimal with two digits behind the point. A number that Windows does not
// format (too long, infinite) comes back as plain digits.
CString FormatUnsigned(ULONGLONG number);
CString FormatSigned(LONGLONG number);
CString FormatDecimal(double number);

// A size in bytes in the largest unit that it exceeds, with two digits behind the point: "1,024.00 Bytes", "1.00 KB".
// Null gives "0 Bytes".
CString FormatByteSize(const LARGE_INTEGER* size);
