#include "app/clipboard_viewer_win32.h"

namespace {
HWND g_nextViewer = nullptr;
}

void JoinClipboardChain(HWND window) { g_nextViewer = SetClipboardViewer(window); }

void LeaveClipboardChain(HWND window) {
  ChangeClipboardChain(window, g_nextViewer);
  g_nextViewer = nullptr;
}

void PassClipboardNews(WPARAM wParam, LPARAM lParam) {
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
