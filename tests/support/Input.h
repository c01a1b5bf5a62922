// Mouse and keyboard input as the devices would send it. Nothing here waits for the input to be dealt with.
#pragma once

#include <windows.h>

#include <string_view>

namespace input {

// Puts the cursor exactly on a pixel of the screen.
void MoveTo(POINT screen);
void LeftDown();
void LeftUp();
void KeyDown(WORD virtualKey);
void KeyUp(WORD virtualKey);
// Types characters that need not be on any keyboard.
void Type(std::wstring_view text);
// Lets go of the modifiers and of the left button, as far as they are down.
void ReleaseAll();

}  // namespace input
