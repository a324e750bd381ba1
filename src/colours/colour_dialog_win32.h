// The colour dialog: the system's colour chooser with the named colours of
// the colour table in use (ColourTableFile in the program's folder) beside
// it, to pick from, add to, delete from, or switch to another table.
#pragma once
#include <windows.h>

// `colour` in and out; non-zero after OK, as ChooseColorA.
BOOL ChooseColourWithTable(HWND owner, COLORREF* colour);
// The list `listId` of `dialog` emptied and filled from a table file, each
// item a name with its colour as item data; 0 when the file cannot be read.
int LoadColourTable(HWND dialog, const char* path, int listId);
// The list written back to the file; 0 when the list could not be counted.
int SaveColourTable(HWND dialog, const char* path, int listId);
// "COMMONAddColourBox": names `colour` and adds it to the caller's list;
// 1 when a colour was added.
int AddColourDialog(HWND owner, COLORREF colour, int listId);
// "COMMONOpenColourTableBox": picks a table of the program's folder;
// `fileName` (261 bytes) in and out, the chosen name with ".CCL"; 1 on OK.
int OpenColourTableDialog(HWND owner, char* fileName);
