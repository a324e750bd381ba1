#include <set>

#include "print/booklet.h"
#include "print/progress_bar.h"
#include "test_support.h"

TEST(Booklet, EveryPageHalfIsPrintedExactlyOnce) {
  std::multiset<int> uppers, lowers;
  for (const BookletSheet& s : BookletSheets) {
    uppers.insert({s.frontUpper, s.backUpper});
    lowers.insert({s.frontLower, s.backLower});
  }
  std::multiset<int> all;
  for (int page = 0; page < 14; ++page) all.insert(page);
  EXPECT_EQ(uppers, all);
  EXPECT_EQ(lowers, all);
  // The outside sheet: the cover's blank upper half over its face.
  EXPECT_EQ(BookletSheets[6].frontUpper, 13);
  EXPECT_EQ(BookletSheets[6].frontLower, 13);
  // June hangs in the middle of the fold, picture over its own dates.
  EXPECT_EQ(BookletSheets[0].backUpper, 5);
  EXPECT_EQ(BookletSheets[0].backLower, 5);
}

TEST(Booklet, FaceUpPrintersTakeTheBacksInReverse) {
  for (int j = 0; j < 7; ++j) {
    EXPECT_EQ(BackPassSheet(j, false), j);
    EXPECT_EQ(BackPassSheet(j, true), 6 - j);
  }
}

TEST(ProgressBar, TheDonePartGrowsFromTheLeft) {
  int right = -1;
  EXPECT_FALSE(ProgressDoneRight("", 100, &right));
  EXPECT_FALSE(ProgressDoneRight("junk", 100, &right));
  ASSERT_TRUE(ProgressDoneRight("14,0", 100, &right));
  EXPECT_EQ(right, 0);
  ASSERT_TRUE(ProgressDoneRight("14,3", 100, &right));
  EXPECT_EQ(right, 23);
  ASSERT_TRUE(ProgressDoneRight("14,13", 100, &right));
  EXPECT_EQ(right, 100) << "current = total - 1 fills the bar";
  ASSERT_TRUE(ProgressDoneRight("12,40", 100, &right));
  EXPECT_EQ(right, 100) << "never beyond";
  ASSERT_TRUE(ProgressDoneRight("1,0", 100, &right));
  EXPECT_EQ(right, 0) << "a single step divides by 1, not 0";
}
