// "ChangeDriverBox": the warning that a display of 256 colours or fewer
// shows pictures poorly, with a check box that stops it for good.
#pragma once
#include <windows.h>

// Shows the box modally; a ticked check box clears ShowDriverMessage.
void ShowDriverWarning(HWND owner);
// Shows it when the display has 8 bits per pixel or fewer and the
// ShowDriverMessage setting is on.
void WarnAboutColourDepth(HWND owner, int colourBits);
