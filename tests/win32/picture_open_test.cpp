// The picture-open dialog driven as a user drives it: it opens in the
// folder given, shows the picture selected with its facts, remembers the
// preview switch and the filter, and returns the file chosen.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

#include "base/text.h"
#include "config/settings.h"
#include "dialog_driver.h"
#include "pictures/image_files.h"
#include "pictures/picture_open_dialog_win32.h"
#include "res/picture_dialog_ids.h"
#include "test_support.h"

namespace {

HWND Hook(HWND dialog) { return FindWindowExA(dialog, nullptr, "#32770", nullptr); }

HWND FindByClass(HWND parent, const char* cls) {
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    char name[64] = "";
    GetClassNameA(child, name, sizeof name);
    if (std::string(name) == cls) return child;
    if (HWND inner = FindByClass(child, cls)) return inner;
  }
  return nullptr;
}

RECT RectIn(HWND window, HWND client) {
  RECT r;
  GetWindowRect(window, &r);
  MapWindowPoints(nullptr, client, reinterpret_cast<POINT*>(&r), 2);
  return r;
}

BOOL CALLBACK LowestControl(HWND control, LPARAM data) {
  auto* lowest = reinterpret_cast<std::pair<HWND, LONG>*>(data);
  char name[16] = "";
  GetClassNameA(control, name, sizeof name);
  // The hook's own dialog spans the whole height it was given: only the
  // controls show where the content ends.
  if (IsWindowVisible(control) && std::string(name) != "#32770")
    lowest->second = std::max(lowest->second, RectIn(control, lowest->first).bottom);
  return TRUE;
}

// The preview, "Preview" and the facts at their heights for this display
// (given for 96 dots per inch), one under the other inside the dialog, and
// no empty band under the lowest control of the dialog.
void ExpectPlacedForTheDisplay(HWND dialog, HWND hook) {
  HDC dc = GetDC(hook);
  const int dpi = GetDeviceCaps(dc, LOGPIXELSY);
  ReleaseDC(hook, dc);
  if (const char* wanted = std::getenv("QUERNAL_TEST_DPI")) {
    ASSERT_EQ(dpi, std::atoi(wanted)) << "the prefix's dpi";
  }
  const int ids[] = {IDC_PICTURE_PREVIEW, IDC_PICTURE_SHOW_PREVIEW, IDC_PICTURE_FACTS};
  const int tops[] = {38, 183, 204};
  RECT client;
  GetClientRect(hook, &client);
  for (int i = 0; i < 3; ++i) {
    const RECT r = RectIn(GetDlgItem(hook, ids[i]), hook);
    EXPECT_EQ(r.top, MulDiv(tops[i], dpi, 96)) << ids[i] << " at " << dpi << " dpi";
    EXPECT_LE(r.bottom, client.bottom) << ids[i] << " is cut off";
    if (i > 0) {
      EXPECT_LE(RectIn(GetDlgItem(hook, ids[i - 1]), hook).bottom, r.top) << ids[i] << " is covered";
    }
  }
  std::pair<HWND, LONG> lowest{dialog, 0};
  EnumChildWindows(dialog, LowestControl, reinterpret_cast<LPARAM>(&lowest));
  GetClientRect(dialog, &client);
  EXPECT_LT(client.bottom - lowest.second, MulDiv(24, dpi, 96)) << "empty below the controls";
}

// The colour in the middle of the preview, as the screen shows it.
COLORREF PreviewMiddle(HWND hook) {
  HWND preview = GetDlgItem(hook, IDC_PICTURE_PREVIEW);
  UpdateWindow(preview);
  RECT r;
  GetClientRect(preview, &r);
  HDC dc = GetDC(preview);
  const COLORREF c = GetPixel(dc, r.right / 2, r.bottom / 2);
  ReleaseDC(preview, dc);
  return c;
}

}  // namespace

TEST_F(QuernalTest, ThePictureOpenDialogPreviewsTheSelectedPicture) {
  // A 40 x 30 picture of one colour, the only file of its folder.
  BlockHandle dib = MakePatternDib(40, 30, 24, 7);
  {
    BlockLock lock(dib);
    uint8_t* bits = lock.bytes() + 40;
    for (int i = 0; i < 40 * 30 * 3; i += 3) bits[i] = 0x20, bits[i + 1] = 0x80, bits[i + 2] = 0xC0;
  }
  const std::string file = dir_.File("Field.bmp");
  ASSERT_TRUE(WriteBmpFile(file.c_str(), dib));
  GlobalBlockFree(dib);
  Settings.ImageFileOpenIndex = 2;  // BMP files
  Settings.ShowFileOpenPreview = 1;

  std::string facts;
  COLORREF shown = 0, hidden = 0;
  DialogDriver driver;
  driver.Then("Open", [&](HWND dialog) {
    HWND hook = Hook(dialog);
    ASSERT_NE(hook, nullptr);
    EXPECT_EQ(IsDlgButtonChecked(hook, IDC_PICTURE_SHOW_PREVIEW), BST_CHECKED);
    ExpectPlacedForTheDisplay(dialog, hook);
    EXPECT_EQ(SendDlgItemMessageA(dialog, cmb1, CB_GETCURSEL, 0, 0), 1) << "BMP files";
    // The user clicks the file in the list.
    HWND list = FindByClass(dialog, "SysListView32");
    ASSERT_NE(list, nullptr);
    LVITEMA item{};
    item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageA(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&item));
  });
  driver.Then("Open", [&](HWND dialog) {
    HWND hook = Hook(dialog);
    facts = ItemText(hook, IDC_PICTURE_FACTS);
    shown = PreviewMiddle(hook);
    SetCheck(hook, IDC_PICTURE_SHOW_PREVIEW, false);
  });
  driver.Then("Open", [&](HWND dialog) {
    hidden = PreviewMiddle(Hook(dialog));
    Press(dialog, IDOK);
  });
  char path[MAX_PATH];
  CopyText(path, sizeof path, (dir_.path() + "\\").c_str());
  ASSERT_TRUE(OpenPictureFile(nullptr, path));
  EXPECT_TRUE(driver.Finished());
  EXPECT_STREQ(path, file.c_str());
  EXPECT_EQ(facts, "Width: 40\nDepth: 30\nColors: 16,777,216");
  EXPECT_EQ(shown, RGB(0xC0, 0x80, 0x20)) << "the picture fills the preview's middle";
  EXPECT_EQ(hidden, RGB(255, 255, 255)) << "a preview switched off is white";
  EXPECT_EQ(Settings.ShowFileOpenPreview, 0u);
  EXPECT_EQ(Settings.ImageFileOpenIndex, 2u);

  // Cancelled, nothing is chosen and the path is no answer.
  driver.Then("Open", [](HWND dialog) { Press(dialog, IDCANCEL); });
  EXPECT_FALSE(OpenPictureFile(nullptr, path));
  EXPECT_TRUE(driver.Finished());
}
