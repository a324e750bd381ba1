// The picture-open dialog driven as a user drives it: it opens in the
// folder given, shows the picture selected with its facts, remembers the
// preview switch and the filter, and returns the file chosen.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <string>

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

int Top(HWND hook, int id) {
  RECT r;
  GetWindowRect(GetDlgItem(hook, id), &r);
  MapWindowPoints(nullptr, hook, reinterpret_cast<POINT*>(&r), 2);
  return r.top;
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
    EXPECT_EQ(Top(hook, IDC_PICTURE_PREVIEW), 38);
    EXPECT_EQ(Top(hook, IDC_PICTURE_SHOW_PREVIEW), 183);
    EXPECT_EQ(Top(hook, IDC_PICTURE_FACTS), 204);
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
