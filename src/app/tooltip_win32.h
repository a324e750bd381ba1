// "QuernalTip": the program's own tooltip, a small borderless popup with a
// line of text. One tip shows at a time.
#pragma once
#include <windows.h>

#include <string>

constexpr const char* kTipClass = "QuernalTip";

// Registers the class; a class already registered by this module counts.
bool RegisterTipClass(HINSTANCE instance);
// Shows `text` with the tip's top left corner at `at` (screen coordinates),
// pulled onto the screen, without taking the focus. `owner` keeps the tip
// above its window.
void ShowTip(HWND owner, const std::string& text, POINT at);
void HideTip();
// The tip window, shown or not; none before the first tip.
HWND TipWindow();
