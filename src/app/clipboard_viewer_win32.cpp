#include "app/clipboard_viewer_win32.h"

#include "res/main_ids.h"

namespace {
HWND g_nextViewer = nullptr;
}

void JoinClipboardChain(HWND window) { g_nextViewer = SetClipboardViewer(window); }

void LeaveClipboardChain(HWND window) {
  ChangeClipboardChain(window, g_nextViewer);
  g_nextViewer = nullptr;
}

void ClipboardChanged(HWND window, WPARAM wParam, LPARAM lParam) {
  const bool picture = IsClipboardFormatAvailable(CF_DIB) || IsClipboardFormatAvailable(CF_BITMAP);
  EnableMenuItem(GetMenu(window), IDM_PASTE, MF_BYCOMMAND | (picture ? MF_ENABLED : MF_GRAYED));
  if (g_nextViewer) SendMessageA(g_nextViewer, WM_DRAWCLIPBOARD, wParam, lParam);
}

void ClipboardChainChanged(WPARAM wParam, LPARAM lParam) {
  // wParam is the viewer leaving, lParam the one after it.
  if (reinterpret_cast<HWND>(wParam) == g_nextViewer) {
    g_nextViewer = reinterpret_cast<HWND>(lParam);
  } else if (g_nextViewer) {
    SendMessageA(g_nextViewer, WM_CHANGECBCHAIN, wParam, lParam);
  }
}
