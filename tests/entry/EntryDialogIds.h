// Control ids of the dialog of these tests.
#pragma once

#define IDD_ENTRY 100
#define IDC_CELLS 103
#define IDC_ELSEWHERE 104
