// The program's process-wide state: one open calendar, its file, the view.
#pragma once
#include <windows.h>

#include <string>

#include "base/program_win32.h"
#include "calendar/calendar_model.h"
#include "calendar/picture_streams.h"
#include "render/screen_picture_win32.h"

struct AppState {
  HINSTANCE instance = nullptr;
  HWND mainWindow = nullptr;
  int32_t defaultWidth = 0, defaultHeight = 0;
  int colourBits = 24;
  HFONT childFont = nullptr;
  HBRUSH faceBrush = nullptr, blackBrush = nullptr, barBrush = nullptr;
  CalendarDocument document = 0;
  std::string path = "Untitled.CLN";
  // The file as it was when opened or last saved: a save over it that finds
  // it changed since asks first.
  FileStamp stamp;
  bool stamped = false;
  int zoom = 100;
  int scrollX = 0, scrollY = 0;  // the zoomed page's offset in the window
  ScreenPictureCache pictures;    // the page's picture as the view last showed it
};

extern AppState App;

// Sets the main window's title from the document's file name and page.
void UpdateTitle();
