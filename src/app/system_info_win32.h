// Help, System information: what a user, or a helper on the telephone,
// needs to know about this installation, in a box whose text can be copied.
#pragma once
#include <windows.h>

#include <string>

// The facts, one per line ("Version: ...", "Windows: ...", ...).
std::string SystemInformationText();
void ShowSystemInformation(HWND owner);
