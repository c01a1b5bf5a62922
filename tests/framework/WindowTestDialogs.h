// The dialogs of the window tests. Also read by the resource compiler.
#pragma once

#define IDD_PROBE 300
#define IDD_NO_PLACE 301
#define IDD_BAD_INIT 302

#define IDC_PROBE_EDIT 311
#define IDC_PROBE_COMBO 312
#define IDC_PROBE_BUTTON 313
#define IDC_PROBE_SECOND_EDIT 314
