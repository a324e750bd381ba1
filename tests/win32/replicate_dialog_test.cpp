// The Replicate dialog driven as a user drives it.
#include "res/calendar_dialog_ids.h"
#include "calendar/replicate_dialog_win32.h"
#include "dialog_driver.h"
#include "test_support.h"

namespace {
constexpr int kMarch = 2;

class ReplicateDialogTest : public QuernalTest {
 protected:
  void SetUp() override {
    QuernalTest::SetUp();
    doc_ = CreateCalendar(2026, kMarch);
    ASSERT_NE(doc_, 0u);
    MonthPage march;
    ASSERT_TRUE(GetMonthPage(doc_, kMarch, &march));
    march.Picture = MakePatternDib(16, 8, 24, 3);
    ASSERT_TRUE(PutMonthPage(doc_, kMarch, &march));
  }
  void TearDown() override {
    FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  MonthPage Page(int month) {
    MonthPage page;
    EXPECT_TRUE(GetMonthPage(doc_, month, &page));
    return page;
  }
  int Changed() {
    CalendarHeader header;
    EXPECT_TRUE(GetHeader(doc_, &header));
    return header.Changed;
  }
  CalendarDocument doc_ = 0;
};

int Box(int month) { return IDC_REPLICATE_JANUARY + month; }
bool MonthTicked(HWND dialog, int month) { return Checked(dialog, Box(month)); }
bool OkEnabled(HWND dialog) { return IsWindowEnabled(GetDlgItem(dialog, IDOK)) != FALSE; }
}  // namespace

TEST_F(ReplicateDialogTest, OkFollowsTheTickedMonthsAndCopiesOntoThemAlone) {
  DialogDriver driver;
  driver.Then("Replicate", [](HWND dialog) {
    EXPECT_EQ(ItemText(dialog, IDC_REPLICATE_CAPTION), "The currently select month is March");
    EXPECT_FALSE(OkEnabled(dialog));
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDCANCEL));
    Press(dialog, IDC_REPLICATE_ALL);
  });
  driver.Then("Replicate", [](HWND dialog) {
    for (int month = 0; month < 12; ++month) EXPECT_EQ(MonthTicked(dialog, month), month != kMarch) << month;
    EXPECT_TRUE(OkEnabled(dialog));
    EXPECT_EQ(GetFocus(), GetDlgItem(dialog, IDOK));
    Press(dialog, IDC_REPLICATE_NONE);
  });
  driver.Then("Replicate", [](HWND dialog) {
    for (int month = 0; month < 12; ++month) EXPECT_FALSE(MonthTicked(dialog, month)) << month;
    EXPECT_FALSE(OkEnabled(dialog));
    SetCheck(dialog, Box(3), true);
  });
  driver.Then("Replicate", [](HWND dialog) {
    EXPECT_TRUE(OkEnabled(dialog));
    Press(dialog, IDCANCEL);
  });
  EXPECT_EQ(ReplicateMonth(nullptr, doc_), 0);
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(Changed(), 0);
  EXPECT_EQ(Page(3).Picture, 0u) << "Cancel copies nothing";

  // OK copies March onto the ticked months alone (the copy itself is the
  // model's, tested natively).
  driver.Then("Replicate", [](HWND dialog) {
    SetCheck(dialog, Box(0), true);
    SetCheck(dialog, Box(11), true);
    Press(dialog, IDOK);
  });
  EXPECT_EQ(ReplicateMonth(nullptr, doc_), 1);
  EXPECT_TRUE(driver.Finished());
  EXPECT_EQ(Changed(), 1);
  for (int month = 0; month < 12; ++month)
    EXPECT_EQ(Page(month).Picture != 0, month == 0 || month == 11 || month == kMarch) << month;
}
