// The main window as a clipboard viewer: Paste is offered only while the
// clipboard holds a picture.
#pragma once
#include <windows.h>

// Joins the viewer chain, keeping the next viewer (WM_CREATE).
void JoinClipboardChain(HWND window);
// Leaves the chain (WM_DESTROY).
void LeaveClipboardChain(HWND window);
// WM_DRAWCLIPBOARD: enables Paste on `window`'s menu only for a Dib or a
// bitmap on the clipboard, and passes the news down the chain.
void ClipboardChanged(HWND window, WPARAM wParam, LPARAM lParam);
// WM_CHANGECBCHAIN: mends the chain when a viewer leaves it.
void ClipboardChainChanged(WPARAM wParam, LPARAM lParam);
