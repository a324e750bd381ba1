// Names of files in the program's folder (ApplicationPath) that come from
// the settings file or from calendar files: event lists, the colour table,
// themes. Such a name may only ever reach a file in that folder.
#pragma once

// True for a plain file name in the program's folder. Refused, because it
// could reach anywhere else or a device: empty, separators or a drive, "."
// or "..", characters Windows refuses, a trailing dot or blank, or a
// reserved device name (CON, PRN, AUX, NUL, COM1-9, LPT1-9) before its first
// dot.
bool IsPlainFileName(const char* name);
