// The font box driven as a user drives it: families, the styles a family
// really has, the size and its range, OK and Cancel.
#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

#include "dialog_driver.h"
#include "editors/font_box_win32.h"
#include "res/editor_dialog_ids.h"
#include "test_support.h"

namespace {

std::string Selected(HWND box, int id) {
  const LRESULT at = SendDlgItemMessageA(box, id, CB_GETCURSEL, 0, 0);
  return at < 0 ? "" : Entries(box, id)[static_cast<size_t>(at)];
}

// Picks entry `text` of a list as a click does.
void Pick(HWND box, int id, const std::string& text) {
  SendDlgItemMessageA(box, id, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
  PostMessageA(box, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(GetDlgItem(box, id)));
}

struct Font {
  char face[261];
  int32_t weight, italic, size;
};

}  // namespace

TEST(FontBox, TheStylesOfTheChosenFamilyASizeAsTypedAndCancel) {
  Font font{"Liberation Serif", 700, 0, 30};
  DialogDriver driver;
  driver.Then("Font", [](HWND box) {
    EXPECT_EQ(Selected(box, IDC_FONT_FAMILY), "Liberation Serif");
    EXPECT_EQ(ItemText(box, 10101), "4,100,30") << "the caller's range replaces the template's";
    EXPECT_EQ(ItemText(box, IDC_FONT_SIZE), "30");
    EXPECT_EQ(GetFocus(), GetDlgItem(box, IDOK));
  });
  // The styles come once the box is up, with the request's own selected.
  driver.Then("Font", [](HWND box) {
    EXPECT_EQ(Entries(box, IDC_FONT_STYLE), (std::vector<std::string>{"Regular", "Bold", "Italic", "Bold Italic"}));
    EXPECT_EQ(Selected(box, IDC_FONT_STYLE), "Bold");
    EXPECT_EQ(ItemText(box, IDC_FONT_SAMPLE), "Liberation Serif");
    Pick(box, IDC_FONT_STYLE, "Italic");
  });
  // A style picked reaches the request at once; a family without it shows
  // its first style, and OK keeps the request's.
  driver.Then("Font", [](HWND box) { Pick(box, IDC_FONT_FAMILY, "DejaVu Sans Light"); });  // one style, extra light
  driver.Then("Font", [](HWND box) {
    ASSERT_EQ(Entries(box, IDC_FONT_STYLE).size(), 1u);
    EXPECT_EQ(Selected(box, IDC_FONT_STYLE), Entries(box, IDC_FONT_STYLE)[0]);
    SetDlgItemTextA(box, IDC_FONT_SIZE, "250");
    Press(box, IDOK);
  });
  ASSERT_TRUE(ChooseFontBox(nullptr, font.face, &font.weight, &font.italic, &font.size, 4, 100));
  EXPECT_TRUE(driver.Finished());
  EXPECT_STREQ(font.face, "DejaVu Sans Light");
  EXPECT_EQ(font.weight, 400) << "the style picked";
  EXPECT_NE(font.italic, 0);
  EXPECT_EQ(font.size, 250) << "typed beyond the range, taken as typed";

  // Cancel after changes leaves every field as it was; a range of 0..0
  // takes the size away, and an unknown face typed in is taken as it stands.
  const Font before{"Liberation Sans", 700, 255, 12};
  font = before;
  driver.Then("Font", [](HWND box) {
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, IDC_FONT_SIZE)));
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, 10101)));
    Pick(box, IDC_FONT_STYLE, "Regular");
    SetDlgItemTextA(box, IDC_FONT_FAMILY, "No Such Face");
    Press(box, IDCANCEL);
  });
  EXPECT_FALSE(ChooseFontBox(nullptr, font.face, &font.weight, &font.italic, &font.size, 0, 0));
  EXPECT_EQ(std::string(font.face), before.face);
  EXPECT_EQ(font.weight, before.weight);
  driver.Then("Font", [](HWND box) {
    SetDlgItemTextA(box, IDC_FONT_FAMILY, "No Such Face");
    PostMessageA(box, WM_COMMAND, IDC_FONT_FAMILY_CHANGED, 0);
  });
  driver.Then("Font", [](HWND box) {
    EXPECT_EQ(SendDlgItemMessageA(box, IDC_FONT_STYLE, CB_GETCOUNT, 0, 0), 0);
    Press(box, IDOK);
  });
  ASSERT_TRUE(ChooseFontBox(nullptr, font.face, nullptr, nullptr, nullptr, 4, 100));
  EXPECT_STREQ(font.face, "No Such Face");
  EXPECT_TRUE(driver.Finished());
}
