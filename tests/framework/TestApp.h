// The application object of the test program.
#pragma once

#include <afxwin.h>

class CTestApp : public CWinApp {
public:
    using CWinApp::CWinApp;
};

extern CTestApp theTestApp;
