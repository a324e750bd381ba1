// Quernal.exe started as a user starts it, driven from outside through its
// window: title, settings, position, command line, zoom, saving, and the
// unsaved-changes question.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <string>

#include "e2e_support.h"
#include "res/calendar_dialog_ids.h"
#include "res/main_ids.h"

namespace {

const char* const kMonths[12] = {"January", "February", "March",     "April",   "May",      "June",
                                 "July",    "August",   "September", "October", "November", "December"};

}  // namespace

// Without a configuration folder the program starts on today's month and
// makes none; with settings, it writes them on exit, pulls edges stored on a
// larger screen back onto this one, and reopens maximized when it closed so.
TEST(MainWindow, StartsFromItsSettingsAndWritesThemOnExit) {
  char appData[MAX_PATH];
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, appData);
  const std::string folder = std::string(appData) + "\\Tarnwick", ini = ConfigFolder() + "QUERNL.INI";
  DeleteFileA((folder + "\\QUERNL.INI").c_str());
  RemoveDirectoryA(folder.c_str());
  {
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr) << "no main window appeared";
    std::time_t now = std::time(nullptr);
    const std::string title = "Quernal [ Untitled.CLN \x96 " + std::string(kMonths[std::localtime(&now)->tm_mon]) + " ]";
    EXPECT_EQ(quernal.Title(), title);
    ASSERT_TRUE(quernal.Close());
    EXPECT_EQ(GetFileAttributesA(folder.c_str()), INVALID_FILE_ATTRIBUTES) << "the program never makes the folder";
  }
  WriteSettings("StickyWindowLeft = 5000\nStickyWindowTop = 4000\nStickyWindowRight = 5600\nStickyWindowBottom = 4460\n");
  {
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    RECT r;
    GetWindowRect(quernal.window(), &r);
    // A 620 x 460 window would fit; the size stays the default one.
    EXPECT_EQ(r.left, GetSystemMetrics(SM_CXSCREEN) - 620);
    EXPECT_EQ(r.top, GetSystemMetrics(SM_CYSCREEN) - 460);
    EXPECT_EQ(r.bottom - r.top, GetSystemMetrics(SM_CYSCREEN) * 95 / 100);
    ASSERT_TRUE(quernal.Close());
    const std::string settings = ReadAll(ini);
    EXPECT_EQ(settings.rfind(";Quernal configuration file", 0), 0u) << settings.substr(0, 200);
    EXPECT_NE(settings.find("[Quernal]"), std::string::npos);
    EXPECT_NE(settings.find("StartMaximized = 0"), std::string::npos);
    EXPECT_EQ(settings.find("StickyWindowLeft = 4294967295"), std::string::npos) << "the window's edges are kept";
  }
  {
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    SendMessageA(quernal.window(), WM_SYSCOMMAND, SC_MAXIMIZE, 0);
    ASSERT_TRUE(IsZoomed(quernal.window()));
    ASSERT_TRUE(quernal.Close());
  }
  EXPECT_NE(ReadAll(ini).find("StartMaximized = 1"), std::string::npos);
  Quernal again;
  ASSERT_NE(again.MainWindow(), nullptr);
  for (int i = 0; i < 50 && !IsZoomed(again.window()); ++i) Sleep(100);
  EXPECT_TRUE(IsZoomed(again.window()));
  ASSERT_TRUE(again.Close());
}

// Scroll bar `id` of the main window, as the program last set it.
SCROLLINFO ScrollBar(HWND window, int id) {
  SCROLLINFO info{sizeof info, SIF_ALL, 0, 0, 0, 0, 0};
  GetScrollInfo(GetDlgItem(window, id), SB_CTL, &info);
  return info;
}

// Save on an untitled calendar asks for a name (cancelled, nothing changes);
// named anew, the title takes the page shown and the name leads the recent
// files. The command line is opened exactly as it stands: the file reopens
// on its page, and with quotes it names no file.
TEST(MainWindow, SaveAsksForANameAndTheCommandLineOpensTheFile) {
  WriteSettings("");
  const std::string path = FreshFile("Saved.CLN");
  {
    Quernal quernal;
    ASSERT_NE(quernal.MainWindow(), nullptr);
    quernal.Do(WM_COMMAND, IDM_PAGE_COVER);  // the cover is the page the file reopens on
    const std::string title = quernal.Title();
    quernal.Command(IDM_SAVE);
    HWND dialog = quernal.Wait("Save As");
    ASSERT_NE(dialog, nullptr) << "Save on Untitled.CLN must ask for a name";
    Press(dialog, IDCANCEL);
    WaitGone(dialog);
    EXPECT_EQ(quernal.Title(), title);

    quernal.Command(IDM_SAVE);
    dialog = quernal.Wait("Save As");
    ASSERT_NE(dialog, nullptr);
    ChooseFile(dialog, path);
    EXPECT_EQ(quernal.TitleStartingWith("Quernal [ Saved.CLN"), "Quernal [ Saved.CLN \x96 Cover ]");
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    EXPECT_EQ(static_cast<long long>(file.tellg()), 70139) << "a calendar without pictures";
    ASSERT_TRUE(quernal.Close());
    const std::string ini = ReadAll(ConfigFolder() + "QUERNL.INI");
    EXPECT_NE(ini.find("MenuItem = " + path + "\r\n"), std::string::npos) << ini.substr(ini.find("[QuernalMenuItems]"));
  }
  {
    Quernal quernal(path);
    ASSERT_NE(quernal.MainWindow(), nullptr);
    EXPECT_EQ(quernal.TitleStartingWith("Quernal [ Saved"), "Quernal [ Saved.CLN \x96 Cover ]");
    ASSERT_TRUE(quernal.Close());
  }
  Quernal quoted("\"" + path + "\"");
  ASSERT_NE(quoted.MainWindow(), nullptr);
  HWND box = quoted.Wait("Message");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(MessageText(box), "There has been an error reading this file. It might be corrupted.");
  Press(box, IDOK);
  WaitGone(box);
  EXPECT_EQ(quoted.Title().rfind("Quernal [ Untitled.CLN", 0), 0u);
  ASSERT_TRUE(quoted.Close());
}

// One session: zoom scales the page and resets the scroll bars; the Edit
// menu's dialogs open over the page they belong to and About names the
// program; New asks about unsaved changes and No gives the new calendar
// unsaved; closing asks too, and Yes on an untitled calendar asks for its
// name, saves and ends.
TEST(MainWindow, ZoomTheEditMenusDialogsAndTheUnsavedChangesQuestion) {
  WriteSettings("");
  const std::string path = FreshFile("Kept.CLN");
  Quernal quernal;
  ASSERT_NE(quernal.MainWindow(), nullptr);
  const int page100 = ScrollBar(quernal.window(), 703).nMax - 8;
  SaveShot("main-100");
  quernal.Do(WM_COMMAND, IDM_ZOOM_200);
  EXPECT_EQ(ScrollBar(quernal.window(), 703).nMax - 8, page100 * 2);
  // Page Down moves a zoomed page; the next zoom starts again at the top.
  quernal.Do(WM_KEYDOWN, VK_NEXT);
  EXPECT_GT(ScrollBar(quernal.window(), 703).nPos, 0);
  SaveShot("main-200");
  quernal.Do(WM_COMMAND, IDM_ZOOM_400);
  EXPECT_EQ(ScrollBar(quernal.window(), 703).nPos, 0);
  EXPECT_EQ(ScrollBar(quernal.window(), 703).nMax - 8, page100 * 4);
  quernal.Do(WM_COMMAND, IDM_ZOOM_100);

  quernal.Do(WM_COMMAND, IDM_PAGE_JANUARY + 4);
  quernal.Command(IDM_EVENTS);
  HWND events = quernal.Wait("Edit [ General ]");
  ASSERT_NE(events, nullptr) << "the page's list is the General list shipped beside the program";
  // General.CDF holds eleven events.
  EXPECT_EQ(SendDlgItemMessageA(events, IDC_EVENT_LIST, LB_GETCOUNT, 0, 0), 11);
  SaveShot("events", events);
  Press(events, IDC_EVENT_NEW);
  HWND entry = quernal.Wait("New");
  ASSERT_NE(entry, nullptr);
  SaveShot("new-event", entry);
  Press(entry, IDCANCEL);
  WaitGone(entry);
  Press(events, IDCANCEL);
  WaitGone(events);

  quernal.Command(IDM_REPLICATE);
  HWND replicate = quernal.Wait("Replicate");
  ASSERT_NE(replicate, nullptr);
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(replicate, IDC_REPLICATE_JANUARY + 4))) << "May is the month copied from";
  EXPECT_TRUE(IsWindowEnabled(GetDlgItem(replicate, IDC_REPLICATE_JANUARY + 5)));
  SaveShot("replicate", replicate);
  Press(replicate, IDCANCEL);
  WaitGone(replicate);

  quernal.Command(IDM_ABOUT);
  HWND about = quernal.Wait("About Quernal");
  ASSERT_NE(about, nullptr);
  SaveShot("about", about);
  Press(about, IDOK);
  WaitGone(about);

  quernal.ChangeCalendar();
  quernal.Command(IDM_NEW);
  HWND box = quernal.Wait("Message");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(MessageText(box).rfind("Your current calendar has not been saved.", 0), 0u) << MessageText(box);
  Press(box, IDNO);
  WaitGone(box);
  EXPECT_EQ(quernal.Wait("Save As", 500), nullptr);
  quernal.ChangeCalendar();
  PostMessageA(quernal.window(), WM_SYSCOMMAND, SC_CLOSE, 0);
  box = quernal.Wait("Message");
  ASSERT_NE(box, nullptr);
  Press(box, IDYES);
  HWND dialog = quernal.Wait("Save As");
  ASSERT_NE(dialog, nullptr) << "Yes on an untitled calendar asks for its name";
  ChooseFile(dialog, path);
  EXPECT_TRUE(quernal.Ended()) << "the program closes after saving";
  EXPECT_TRUE(Exists(path));
}
