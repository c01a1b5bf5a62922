#include "framework/TestApp.h"

CTestApp theTestApp;
