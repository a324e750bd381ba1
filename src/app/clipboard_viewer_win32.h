// The main window as a clipboard viewer, so that Paste is offered only while
// the clipboard holds a picture (the window decides its menu itself).
#pragma once
#include <windows.h>

// Joins the viewer chain, keeping the next viewer (WM_CREATE).
void JoinClipboardChain(HWND window);
// Leaves the chain (WM_DESTROY).
void LeaveClipboardChain(HWND window);
// WM_DRAWCLIPBOARD: passes the news down the chain.
void PassClipboardNews(WPARAM wParam, LPARAM lParam);
// WM_CHANGECBCHAIN: mends the chain when a viewer leaves it.
void ClipboardChainChanged(WPARAM wParam, LPARAM lParam);
