// The dialog that the driver's own tests work. Also read by the resource compiler.
#pragma once

#define IDD_PLAIN 100
#define IDC_NAME 101
#define IDC_ROWS 102
#define IDC_ITEMS 103
#define IDC_ASK 104
#define IDC_CHOICE 105
