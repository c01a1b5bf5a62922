// Pictures of windows.
#pragma once

#include <windows.h>

#include <string>

// Writes the window with its children, frame and caption to a PNG file; called on the window's thread. Throws
// std::runtime_error when the file cannot be written.
void SaveScreenshot(HWND window, const std::wstring& path);
