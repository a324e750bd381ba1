// The events dialog driven as a user drives it: the list, its editors, and
// the files and records left behind.

#include "res/calendar_dialog_ids.h"
#include "calendar/event_list.h"
#include "calendar/events_dialog_win32.h"
#include "dialog_driver.h"
#include "test_support.h"

namespace {
class EventsDialogTest : public QuernalTest {
 protected:
  void TearDown() override {
    if (doc_) FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  void Open(const std::string& general, int page = 0) {
    WriteFile(dir_.File("General.CDF"), AsTextFile(general));
    doc_ = CreateCalendar(2026, page);
    ASSERT_NE(doc_, 0u);
  }
  MonthPage Page(int month) {
    MonthPage page;
    EXPECT_TRUE(GetMonthPage(doc_, month, &page));
    return page;
  }
  std::string EventOn(int month, int day) {
    char text[1024];
    FindEvent(text, sizeof text, Page(month).Events, month, day - 1);
    return text;
  }
  CalendarDocument doc_ = 0;
};

HWND List(HWND dialog) { return GetDlgItem(dialog, IDC_EVENT_LIST); }
int Count(HWND dialog) { return static_cast<int>(SendMessageA(List(dialog), LB_GETCOUNT, 0, 0)); }
int Selection(HWND dialog) { return static_cast<int>(SendMessageA(List(dialog), LB_GETCURSEL, 0, 0)); }
std::string Code(HWND dialog, int index) {
  char code[1100] = "";
  SendMessageA(List(dialog), LB_GETTEXT, index, reinterpret_cast<LPARAM>(code));
  return code;
}
void Answer(DialogDriver* driver, int button, std::string* text = nullptr) {
  driver->Then("Message", [=](HWND box) {
    if (text) *text = MessageText(box);
    PostMessageA(box, WM_COMMAND, button, 0);
  });
}
const char kDeleteQuestion[] =
    "Are you sure you wish to delete the current event?\n\nClick on Yes to delete this event, or No to keep it.";
}  // namespace

TEST_F(EventsDialogTest, NewAndEditedEventsAreSavedWithABackupOnEveryPageOfTheList) {
  Open("; family\nFEB14 Valentine\n");
  DialogDriver driver;
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 1);
    EXPECT_EQ(Selection(dialog), 0);
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(dialog, IDOK)));
    Press(dialog, IDC_EVENT_NEW);
  });
  driver.Then("New", [](HWND box) {
    // Started from the selected entry's date; OK waits for a text.
    EXPECT_EQ(SendDlgItemMessageA(box, IDC_EVENT_MONTH, CB_GETCURSEL, 0, 0), 1);
    EXPECT_EQ(SendDlgItemMessageA(box, IDC_EVENT_DAY, CB_GETCURSEL, 0, 0), 13);
    EXPECT_EQ(SendDlgItemMessageA(box, IDC_EVENT_DAY, CB_GETCOUNT, 0, 0), 28);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, IDOK)));
    SendDlgItemMessageA(box, IDC_EVENT_MONTH, CB_SETCURSEL, 0, 0);
    PostMessageA(box, WM_COMMAND, MAKEWPARAM(IDC_EVENT_MONTH, CBN_SELCHANGE), 0);
    SendDlgItemMessageA(box, IDC_EVENT_DAY, CB_SETCURSEL, 4, 0);
    SetDlgItemTextA(box, IDC_EVENT_TEXT, "Party");
    Press(box, IDOK);
  });
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 2);
    EXPECT_EQ(Selection(dialog), 0);
    EXPECT_EQ(Code(dialog, 0), "05Party");
    SendMessageA(List(dialog), LB_SETCURSEL, 1, 0);
    PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDC_EVENT_LIST, LBN_DBLCLK), reinterpret_cast<LPARAM>(List(dialog)));
  });
  driver.Then("Edit", [](HWND box) {
    EXPECT_EQ(ItemText(box, IDC_EVENT_DATE), "February 14");
    EXPECT_EQ(ItemText(box, IDC_EVENT_TEXT), "Valentine");
    SetDlgItemTextA(box, IDC_EVENT_TEXT, "Valentine's Day");
    Press(box, IDOK);
  });
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 2);
    EXPECT_EQ(Selection(dialog), 1);
    EXPECT_EQ(Code(dialog, 1), "1EValentine's Day");
    Press(dialog, IDOK);
  });
  EXPECT_TRUE(EditEvents(nullptr, doc_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(ReadFile(dir_.File("General.CDF")), AsTextFile("; family\nJan05 Party\nFeb14 Valentine's Day\n"));
  EXPECT_EQ(ReadFile(dir_.File("General.BAK")), AsTextFile("; family\nFEB14 Valentine\n"));
  EXPECT_EQ(EventOn(0, 5), "Party");
  EXPECT_EQ(EventOn(1, 14), "Valentine's Day");
}

// Delete asks and keeps the selection in place; Cancel writes nothing (what
// OK writes, and its backup, is the story above and the list's own tests).
TEST_F(EventsDialogTest, DeleteAsksKeepsTheSelectionInPlaceAndOnlyOkWrites) {
  const char general[] = "JAN01 New Year\nMAR17 Patrick\nDEC25 Christmas\n";
  Open(general);
  DialogDriver driver;
  std::string question;
  driver.Then("Edit [ General ]", [](HWND dialog) {
    SendMessageA(List(dialog), LB_SETCURSEL, 1, 0);
    Press(dialog, IDC_EVENT_DELETE);
  });
  Answer(&driver, IDNO, &question);
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 3);
    Press(dialog, IDC_EVENT_DELETE);
  });
  Answer(&driver, IDYES);
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 2);
    EXPECT_EQ(Selection(dialog), 1) << "the same position";
    EXPECT_EQ(Code(dialog, 1), "BPChristmas");
    Press(dialog, IDC_EVENT_DELETE);
  });
  Answer(&driver, IDYES);
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Selection(dialog), 0) << "the one before the removed last entry";
    Press(dialog, IDC_EVENT_DELETE);
  });
  Answer(&driver, IDYES);
  driver.Then("Edit [ General ]", [](HWND dialog) {
    EXPECT_EQ(Count(dialog), 0);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDOK))) << "an empty list cannot be saved";
    Press(dialog, IDCANCEL);
  });
  EXPECT_FALSE(EditEvents(nullptr, doc_));
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(question, kDeleteQuestion);
  EXPECT_EQ(ReadFile(dir_.File("General.CDF")), AsTextFile(general));
  EXPECT_FALSE(FileExists(dir_.File("General.BAK"))) << "Cancel wrote a backup";
}

TEST_F(EventsDialogTest, AMissingListOrAPageWithoutOneIsReported) {
  doc_ = CreateCalendar(2026, 0);  // no General.CDF: no page has a list
  const struct {
    int page;
    const char* message;
  } cases[] = {{0, "No events are available for the currently selected month."},
               {12, "There has been an error accessing the requested page."}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.page);
    CalendarHeader header;
    ASSERT_TRUE(GetHeader(doc_, &header));
    header.CurrentPage = c.page;
    ASSERT_TRUE(PutHeader(doc_, &header));
    DialogDriver driver;
    std::string message;
    Answer(&driver, IDOK, &message);
    EXPECT_FALSE(EditEvents(nullptr, doc_));
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(message, c.message);
  }
}

TEST_F(EventsDialogTest, ANewNameSavesTheListUnderThatName) {
  Open("JUL04 Fireworks\n", 6);
  DialogDriver driver;
  driver.Then("Edit [ General ]", [](HWND dialog) { Press(dialog, IDC_EVENT_NEW_NAME); });
  driver.Then("New Event Name", [](HWND box) {
    EXPECT_EQ(ItemText(box, IDC_EVENT_LIST_NAME), "General");
    SetDlgItemTextA(box, IDC_EVENT_LIST_NAME, "a/b");
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(box, IDOK)));
    SetDlgItemTextA(box, IDC_EVENT_LIST_NAME, "Family");
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(box, IDOK)));
    Press(box, IDOK);
  });
  driver.Then("Edit [ Family ]", [](HWND dialog) { Press(dialog, IDOK); });
  EXPECT_TRUE(EditEvents(nullptr, doc_));
  EXPECT_TRUE(driver.Finished());
  CalendarHeader header;
  ASSERT_TRUE(GetHeader(doc_, &header));
  EXPECT_EQ(header.Changed, 1) << "the renamed page went back into the calendar";
  EXPECT_STREQ(Page(6).DaysName, "Family");
  EXPECT_STREQ(Page(5).DaysName, "General");
  EXPECT_EQ(ReadFile(dir_.File("Family.CDF")), AsTextFile("Jul04 Fireworks\n"));
  EXPECT_EQ(ReadFile(dir_.File("General.CDF")), AsTextFile("JUL04 Fireworks\n"));
  EXPECT_FALSE(FileExists(dir_.File("General.BAK")));
  EXPECT_EQ(EventOn(6, 4), "Fireworks");
}
