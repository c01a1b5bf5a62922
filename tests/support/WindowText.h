// Texts of windows, whatever their length.
#pragma once

#include <windows.h>

#include <string>

std::wstring WindowText(HWND window);
std::wstring ClassName(HWND window);
