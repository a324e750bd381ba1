// How fast the page view repaints a calendar of photographs, how much memory
// the program holds with it open, and what printing it costs, in the main
// window's own code under Wine:
//   quernal-repaint-bench.exe [--size WxH] [--runs N] [--print] [--file F.CLN]
// The photo calendar (twelve months and a cover, 4000 x 3000 by default) is
// made and saved by a child process first, so that the memory figures are
// those of opening and showing it. Each repaint is synchronous (the window
// is invalidated and updated at once); the median is printed beside the
// first paint of each page and zoom, which makes the part of the picture shown. With
// --print the whole calendar goes to the default printer (the private CUPS
// queue of the test set-up) twice: as the program prints it, and with each
// picture handed to the printer whole, as the program did before; the job's
// size in the spool is read by bench/repaint-bench.sh.
#include <windows.h>
#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "app/app_state_win32.h"
#include "app/main_window_win32.h"
#include "app/theme_win32.h"
#include "app/tooltip_win32.h"
#include "base/dib.h"
#include "bench/photo_calendar.h"
#include "calendar/calendar_file.h"
#include "print/printer_win32.h"
#include "render/gdi_canvas_win32.h"
#include "render/page_renderer.h"
#include "render/primitives_win32.h"
#include "res/main_ids.h"

namespace {

using Clock = std::chrono::steady_clock;
double Ms(Clock::time_point since) { return std::chrono::duration<double, std::milli>(Clock::now() - since).count(); }

void Pump() {
  MSG msg;
  while (PeekMessageA(&msg, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
}

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.empty() ? 0 : v[v.size() / 2];
}

double PeakMiB() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PeakWorkingSetSize / 1048576.0;
}

double PictureMiB(CalendarDocument doc) {
  double bytes = 0;
  for (int m = 0; m < 12; ++m) {
    MonthPage page;
    if (GetMonthPage(doc, m, &page)) bytes += GlobalBlockSize(page.Picture);
  }
  CalendarHeader header;
  if (GetHeader(doc, &header)) bytes += GlobalBlockSize(header.CoverPicture);
  return bytes / 1048576.0;
}

int MakeCalendar(const char* path, int width, int height) {
  CalendarDocument doc = PhotoCalendar(2027, width, height, 12, true);
  SilentProgress progress;
  const int saved = doc && SaveCalendar(&progress, path, doc);
  FreeCalendar(doc);
  return saved ? 0 : 1;
}

bool RunChild(const std::string& commandLine) {
  STARTUPINFOA start{sizeof start};
  PROCESS_INFORMATION child{};
  std::string line = commandLine;
  if (!CreateProcessA(nullptr, &line[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &child)) return false;
  WaitForSingleObject(child.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(child.hProcess, &code);
  CloseHandle(child.hThread);
  CloseHandle(child.hProcess);
  return code == 0;
}

// The page as the view shows it, drawn into a bitmap of the screen's format
// with or without the window's kept picture; its pixels as 32-bit rows.
std::vector<uint32_t> PagePixels(HWND window, const Rect& page, ScreenPictureCache* pictures) {
  HDC screen = GetDC(window);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, Width(page), Height(page));
  HGDIOBJ previous = SelectObject(memory, bitmap);
  {
    GdiCanvas canvas(memory, pictures);
    CalendarHeader header;
    GetHeader(App.document, &header);
    DrawCalendarPage(canvas, page, App.document, header.CurrentPage, false, true, true);
  }
  SelectObject(memory, previous);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, Width(page), -Height(page), 1, 32, BI_RGB};
  std::vector<uint32_t> pixels(static_cast<size_t>(Width(page)) * Height(page));
  GetDIBits(memory, bitmap, 0, Height(page), pixels.data(), &info, DIB_RGB_COLORS);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(window, screen);
  return pixels;
}

// The page rectangle the view uses: the client area's page at the zoom.
Rect ViewPage(HWND window) {
  // The view draws the page at {0, 0, w, h} with the scroll bars' range
  // being the page plus 8: the range tells the page's size.
  SCROLLINFO h{sizeof h, SIF_RANGE}, v{sizeof v, SIF_RANGE};
  GetScrollInfo(GetDlgItem(window, kHorizontalScrollId), SB_CTL, &h);
  GetScrollInfo(GetDlgItem(window, kVerticalScrollId), SB_CTL, &v);
  return {0, 0, h.nMax - 8, v.nMax - 8};
}

// Prints pages as the print command does; with `whole` each picture goes to
// the printer as the Dib itself, as before pictures were reduced to their box.
class WholePictureCanvas : public GdiCanvas {
 public:
  using GdiCanvas::GdiCanvas;
  void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) override {
    BlockLock lock(dib);
    DibInfo info;
    const void* bits = ReadDib(dib, lock, &info);
    if (!bits) return;
    StretchDIBits(PrinterDC, 0, 0, width, height, 0, 0, info.header.biWidth, std::abs(info.header.biHeight), bits,
                  reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS, SRCCOPY);
    (void)printing;
  }
};

double PrintAll(const char* name, bool whole) {
  const auto t = Clock::now();
  DOCINFOA doc{sizeof doc, name};
  if (StartDocA(PrinterDC, &doc) <= 0) return -1;
  const Rect page{0, 0, GetDeviceCaps(PrinterDC, HORZRES), GetDeviceCaps(PrinterDC, VERTRES)};
  for (int index = 0; index < 14; ++index) {
    StartPage(PrinterDC);
    if (whole) {
      WholePictureCanvas canvas(PrinterDC);
      DrawCalendarPage(canvas, page, App.document, index, true, true, true);
    } else {
      GdiCanvas canvas(PrinterDC);
      DrawCalendarPage(canvas, page, App.document, index, true, true, true);
    }
    EndPage(PrinterDC);
  }
  EndDoc(PrinterDC);
  return Ms(t);
}

}  // namespace

int main(int argc, char** argv) {
  int width = 4000, height = 3000, runs = 15;
  bool print = false;
  std::string file;
  for (int i = 1; i < argc; ++i) {
    const std::string opt = argv[i];
    if (opt == "--make" && i + 1 < argc) return MakeCalendar(argv[i + 1], width, height);
    if (opt == "--size" && i + 1 < argc) std::sscanf(argv[++i], "%dx%d", &width, &height);
    else if (opt == "--runs" && i + 1 < argc) runs = std::max(1, std::atoi(argv[++i]));
    else if (opt == "--file" && i + 1 < argc) file = argv[++i];
    else if (opt == "--print") print = true;
  }
  if (file.empty()) {
    char temp[MAX_PATH];
    GetTempPathA(sizeof temp, temp);
    file = std::string(temp) + "quernal-photo-calendar-" + std::to_string(width) + "x" + std::to_string(height) + ".CLN";
    if (GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
      char self[MAX_PATH];
      GetModuleFileNameA(nullptr, self, sizeof self);
      std::printf("making %s\n", file.c_str());
      if (!RunChild("\"" + std::string(self) + "\" --size " + std::to_string(width) + "x" + std::to_string(height) +
                    " --make \"" + file + "\"")) {
        std::fprintf(stderr, "the photo calendar could not be made\n");
        return 1;
      }
    }
  }

  App.instance = GetModuleHandleA(nullptr);
  // Wine learns the CUPS printers when a process first asks its spooler.
  DWORD needed = 0, count = 0;
  EnumPrintersA(PRINTER_ENUM_LOCAL, nullptr, 4, nullptr, 0, &needed, &count);
  PrinterDC = CreateDefaultPrinterDC();
  App.faceBrush = App.barBrush = GetSysColorBrush(COLOR_BTNFACE);
  App.defaultWidth = 900, App.defaultHeight = 1000;
  App.document = CreateCalendar(2027, 0);
  LoadTheme("THEME_Standard.dll");
  RegisterTipClass(App.instance);
  RegisterMainWindowClasses(App.instance);
  HWND window = CreateMainWindow();
  if (!window) return 1;
  ShowWindow(window, SW_SHOW);
  Pump();

  std::printf("peak working set before opening: %.0f MiB\n", PeakMiB());
  auto t = Clock::now();
  OpenOnStart(window, file.c_str());
  Pump();
  const double open = Ms(t);
  const double pictures = PictureMiB(App.document);
  std::printf("%s: opened in %.0f ms, %.1f MiB of pictures; peak working set %.0f MiB\n", file.c_str(), open,
              pictures, PeakMiB());

  const struct {
    const char* name;
    int command;
  } pages[] = {{"month page", IDM_PAGE_JANUARY}, {"year page", IDM_PAGE_YEAR}, {"cover", IDM_PAGE_COVER}};
  std::printf("repaint, ms       zoom:   100%%    200%%    400%%    800%%   (first paint / median of %d)\n", runs);
  for (const auto& p : pages) {
    SendMessageA(window, WM_COMMAND, p.command, 0);
    std::printf("  %-12s          ", p.name);
    for (int zoom = IDM_ZOOM_100; zoom <= IDM_ZOOM_800; ++zoom) {
      SendMessageA(window, WM_COMMAND, zoom, 0);
      Pump();
      std::vector<double> times;
      for (int run = 0; run <= runs; ++run) {
        if (run == 0) App.pictures.Drop();  // the first paint makes the part of the picture shown
        t = Clock::now();
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        times.push_back(Ms(t));
      }
      const double first = times.front();
      times.erase(times.begin());
      std::printf(" %5.0f/%-5.1f", first, Median(times));
    }
    std::printf("\n");
  }
  // At 800 % the view shows the middle of the month's picture: nine first
  // paints, each after the kept tiles were let go.
  SendMessageA(window, WM_COMMAND, IDM_PAGE_JANUARY, 0);
  SendMessageA(window, WM_COMMAND, IDM_ZOOM_800, 0);
  Pump();
  {
    const Rect page = ViewPage(window);
    RECT client;
    GetClientRect(window, &client);
    App.scrollX = std::max<int>(0, Width(page) / 2 - client.right / 2);
    App.scrollY = std::max<int>(0, Height(page) / 4 - client.bottom / 2);
    std::vector<double> firsts;
    const int madeBefore = App.pictures.made();
    for (int run = 0; run < 9; ++run) {
      App.pictures.Drop();
      t = Clock::now();
      RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
      firsts.push_back(Ms(t));
    }
    std::printf("month page at 800%%, the picture's middle in view: first paint %.1f ms (median of 9; %s)\n",
                Median(firsts), App.pictures.made() - madeBefore == 9 ? "each made its tiles" : "NO PICTURE SHOWN");
    App.scrollX = App.scrollY = 0;
  }
  const double peak = PeakMiB();
  std::printf("peak working set: %.0f MiB = %.2f x the pictures' %.0f MiB\n", peak, peak / pictures, pictures);

  // The kept tiles give exactly the pixels of a fresh drawing, in the
  // display's own format.
  SendMessageA(window, WM_COMMAND, IDM_PAGE_JANUARY, 0);
  for (int zoom = IDM_ZOOM_100; zoom <= IDM_ZOOM_800; ++zoom) {
    SendMessageA(window, WM_COMMAND, zoom, 0);
    Pump();
    const Rect page = ViewPage(window);
    ScreenPictureCache kept;
    PagePixels(window, page, &kept);
    const bool same = PagePixels(window, page, nullptr) == PagePixels(window, page, &kept);
    std::printf("month page at %d%%: kept tiles' pixels %s those of a fresh drawing\n",
                100 << (zoom - IDM_ZOOM_100), same ? "are" : "DIFFER FROM");
  }

  if (print) {
    if (!PrinterDC) {
      std::printf("no default printer: printing not measured\n");
    } else {
      std::printf("printer page %d x %d\n", GetDeviceCaps(PrinterDC, HORZRES), GetDeviceCaps(PrinterDC, VERTRES));
      std::printf("print, pictures at their box: %.0f ms to spool (job \"reduced\")\n", PrintAll("reduced", false));
      std::printf("print, pictures whole:        %.0f ms to spool (job \"whole\")\n", PrintAll("whole", true));
    }
  }
  DestroyWindow(window);
  FreeCalendar(App.document);
  return 0;
}
