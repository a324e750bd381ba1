// "Select...": the system's open dialog for picture files, with a preview of
// the picture selected and its width, height and colours beside the list.
#pragma once
#include <windows.h>

// `path` (260 characters) holds the starting path on entry: the dialog opens
// in its folder. Non-zero when the user chose a file, whose full path is then
// in `path`. The filter chosen last is offered again next time.
int OpenPictureFile(HWND owner, char* path);
