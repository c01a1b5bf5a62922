// What every framework header stands on: Windows, and the mark of what the DLL exports.
#pragma once

#include <windows.h>

#if __cplusplus <= 201703L || !defined(UNICODE)
#error "The headers of Registry Rules need -std=c++20 -DUNICODE -D_UNICODE"
#endif

#ifdef FRAMEWORK_BUILD
#define AFX_API __declspec(dllexport)
#else
#define AFX_API __declspec(dllimport)
#endif

#ifndef AFXAPI
#define AFXAPI __stdcall
#endif

#define afx_msg  // marks message handlers

// A place in a collection; null means "none".
struct __POSITION {};
using POSITION = __POSITION*;
