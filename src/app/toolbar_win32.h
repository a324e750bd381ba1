// "QuernalBar": the toolbar strip across the top of the main window, with
// one owner-drawn button per command, drawn by the theme. A click posts the
// button's command to the strip's parent; a mouse resting on a button shows
// its tooltip.
#pragma once
#include <windows.h>

constexpr const char* kToolbarClass = "QuernalBar";
// How long the mouse rests on a button before its tip shows.
constexpr UINT kTipDelayMs = 500;

// Registers the strip's class with `background` as its class brush.
bool RegisterToolbarClass(HINSTANCE instance, HBRUSH background);
// The strip at the top left of `parent`, `width` wide and as high as the
// theme's toolbar. The tooltip class must be registered too.
HWND CreateToolbar(HWND parent, int width);
// Stretches `parent`'s strip to `width`, as the window it tops follows its
// window's width.
void FitToolbar(HWND parent, int width);
// The height `parent`'s toolbar strip takes from the top of its client
// area; 0 without one.
int ToolbarBottom(HWND parent);
