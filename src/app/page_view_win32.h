// The page view: the page shown, at its zoom, in the main window's client
// area below the toolbar strip, with the scroll bars that move it.
#pragma once
#include <windows.h>

// The page shown: 0..11 the months, 12 the year, 13 the cover.
int CurrentPage();
// Places the toolbar strip, the scroll bars and the square between them.
void LayOutChildren(HWND window);
// The scroll bars' ranges for the page at the current zoom.
void UpdateScrollBars(HWND window);
void PaintPageView(HWND window);
// A zoom command, IDM_ZOOM_100..IDM_ZOOM_800: the page shows from its top left.
void SetZoom(HWND window, int command);
// A scroll-bar request (SB_LINEUP and the rest) on SB_VERT or SB_HORZ.
void ScrollPageView(HWND window, int bar, int request);
// The arrows, Page Up and Down, Home and End scroll the page; false for
// any other key.
bool ScrollKey(HWND window, WPARAM key);
