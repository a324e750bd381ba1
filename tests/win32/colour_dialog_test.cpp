// The colour dialog driven as a user drives it: the table beside the
// chooser, the hexadecimal labels, adding, deleting, switching tables, and
// the colour chosen.
#include <windows.h>
#include <colordlg.h>
#include <commctrl.h>

#include <string>
#include <vector>

#include "base/text.h"
#include "colours/colour_dialog_win32.h"
#include "config/settings.h"
#include "dialog_driver.h"
#include "res/colour_dialog_ids.h"
#include "test_support.h"

namespace {

int Selection(HWND dialog) { return static_cast<int>(SendDlgItemMessageA(dialog, IDC_COLOUR_LIST, LB_GETCURSEL, 0, 0)); }

std::string Hex(HWND dialog) {
  return ItemText(dialog, COLOR_RED + IDC_COLOUR_HEX_OFFSET) + " " + ItemText(dialog, COLOR_GREEN + IDC_COLOUR_HEX_OFFSET) +
         " " + ItemText(dialog, COLOR_BLUE + IDC_COLOUR_HEX_OFFSET);
}

// Picks entry `index` of the table as a click (or a double click) does.
void PickEntry(HWND dialog, int index, WORD notification = LBN_SELCHANGE) {
  SendDlgItemMessageA(dialog, IDC_COLOUR_LIST, LB_SETCURSEL, index, 0);
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_COLOUR_LIST, notification),
               reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDC_COLOUR_LIST)));
}

void Answer(DialogDriver* driver, std::string* said) {
  driver->Then("Message", [said](HWND box) {
    *said = MessageText(box);
    Press(box, IDYES);
  });
}

}  // namespace

TEST_F(QuernalTest, TheColourDialogPicksAddsDeletesAndSwitchesTables) {
  CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, (dir_.path() + "\\").c_str());
  WriteFile(dir_.File("QUERNL.CCL"), "Sky=135,206,235\nBrick=166,54,42\nMoss=108,128,64\n");
  WriteFile(dir_.File("Ink.CCL"), "Ink=28,46,86\n");
  WriteFile(dir_.File(".Hidden.CCL"), "Secret=1,2,3\n");

  std::string exists, deleting;
  std::vector<std::string> tables;
  DialogDriver driver;
  driver.Then("Color", [](HWND dialog) {
    EXPECT_EQ(Entries(dialog, IDC_COLOUR_LIST), (std::vector<std::string>{"Sky", "Brick", "Moss"}));
    EXPECT_EQ(Selection(dialog), 1) << "the entry of the colour the dialog opened with";
    EXPECT_EQ(Hex(dialog), "A6H 36H 2AH");
    // The arrows' ranges come from one table: the odd one out read back.
    EXPECT_EQ(SendDlgItemMessageA(dialog, IDC_COLOUR_HUE_ARROWS, UDM_GETRANGE, 0, 0), MAKELONG(239, 0));
    PickEntry(dialog, 0);
  });
  // Sky, already in the table, is added again under another name.
  driver.Then("Color", [](HWND dialog) {
    EXPECT_EQ(GetDlgItemInt(dialog, COLOR_GREEN, nullptr, FALSE), 206u);
    EXPECT_EQ(Hex(dialog), "87H CEH EBH");
    Press(dialog, IDC_COLOUR_ADD);
  });
  Answer(&driver, &exists);
  driver.Then("Add Color", [](HWND box) {
    EXPECT_EQ(ItemText(box, IDC_ADD_COLOUR_GREEN), "206");
    for (const char* name : {"", "Ab"}) {
      SetDlgItemTextA(box, IDC_ADD_COLOUR_NAME, name);
      EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, IDOK))) << name;
    }
    SetDlgItemTextA(box, IDC_ADD_COLOUR_NAME, "Pale sky");
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(box, IDOK)));
    Press(box, IDOK);
  });
  // Moss goes; the one before it is selected.
  driver.Then("Color", [](HWND dialog) {
    EXPECT_EQ(Entries(dialog, IDC_COLOUR_LIST), (std::vector<std::string>{"Sky", "Brick", "Moss", "Pale sky"}));
    PickEntry(dialog, 2);
    Press(dialog, IDC_COLOUR_DELETE);
  });
  Answer(&driver, &deleting);
  driver.Then("Color", [](HWND dialog) {
    EXPECT_EQ(Entries(dialog, IDC_COLOUR_LIST), (std::vector<std::string>{"Sky", "Brick", "Pale sky"}));
    EXPECT_EQ(Selection(dialog), 1);
    Press(dialog, IDC_COLOUR_OPEN);
  });
  driver.Then("Open Color Table", [&](HWND box) {
    tables = Entries(box, IDC_OPEN_TABLE_NAMES);
    EXPECT_EQ(ItemText(box, IDC_OPEN_TABLE_NAMES), "QUERNL");
    SendDlgItemMessageA(box, IDC_OPEN_TABLE_NAMES, CB_SELECTSTRING, static_cast<WPARAM>(-1),
                        reinterpret_cast<LPARAM>("Ink"));
    Press(box, IDOK);
  });
  // A double click on an entry chooses its colour.
  driver.Then("Color", [](HWND dialog) {
    EXPECT_EQ(Entries(dialog, IDC_COLOUR_LIST), std::vector<std::string>{"Ink"});
    PickEntry(dialog, 0);
  });
  driver.Then("Color", [](HWND dialog) { PickEntry(dialog, 0, LBN_DBLCLK); });

  COLORREF colour = RGB(166, 54, 42);
  ASSERT_TRUE(ChooseColourWithTable(nullptr, &colour));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(colour, RGB(28, 46, 86));
  EXPECT_EQ(exists, "This color already exists in the current color table as Sky. Do you wish to add it anyway?");
  EXPECT_EQ(deleting, "Do you really want to delete this color from the current color list?");
  EXPECT_EQ(tables, (std::vector<std::string>{"Ink", "QUERNL"}));
  EXPECT_STREQ(Settings.ColourTableFile, "Ink.CCL");
  EXPECT_EQ(ReadFile(dir_.File("QUERNL.CCL")), AsTextFile("Sky=135,206,235\nBrick=166,54,42\nPale sky=135,206,235\n"));

  // Cancel leaves the colour as it was.
  driver.Then("Color", [](HWND dialog) { Press(dialog, IDCANCEL); });
  colour = RGB(1, 2, 3);
  EXPECT_FALSE(ChooseColourWithTable(nullptr, &colour));
  EXPECT_EQ(colour, RGB(1, 2, 3));
}
