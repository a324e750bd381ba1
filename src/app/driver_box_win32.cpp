#include "app/driver_box_win32.h"

#include "base/program_win32.h"
#include "config/settings.h"

// Closing the box either way keeps the check box's word.
void ShowDriverWarning(HWND owner) {
  if (WarningWithCheckBox(owner, "ChangeDriverBox", MAKEINTRESOURCEA(32515), "", false))  // IDI_WARNING
    Settings.ShowDriverMessage = 0;
}

void WarnAboutColourDepth(HWND owner, int colourBits) {
  if (colourBits < 9 && Settings.ShowDriverMessage) ShowDriverWarning(owner);
}
