#include "framework/OlePropertyPage.h"

IMPLEMENT_DYNAMIC(COlePropertyPage, CDialog)
