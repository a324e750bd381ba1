// What is printed in which order: single pages, the booklet's sheets and the
// progress bar that follows them.
#include <set>
#include <utility>
#include <vector>

#include "print/booklet.h"
#include "print/print_plan.h"
#include "print/progress_bar.h"
#include "test_support.h"

namespace {

// Each side's upper page and the bar's position at it.
std::vector<std::pair<int, int>> Sides(const PrintPlan& plan) {
  std::vector<std::pair<int, int>> sides;
  for (const PrintedSide& side : plan.sides) sides.push_back({side.upper, side.current});
  return sides;
}

}  // namespace

TEST(PrintPlan, SinglePagesInTheOrderOfTheDialogsChoice) {
  EXPECT_EQ(PageChoiceFromFlags(0x84000), PageChoice::All);
  EXPECT_EQ(PageChoiceFromFlags(0x84000 | 1), PageChoice::Selection);
  EXPECT_EQ(PageChoiceFromFlags(0x84000 | 2), PageChoice::Range);
  // All pages go cover, year, then the months, and fill the bar.
  const PrintPlan all = SingleSidedPlan(PageChoice::All, 1, 1, 5);
  std::vector<std::pair<int, int>> expected = {{13, 0}, {12, 1}};
  for (int m = 0; m < 12; ++m) expected.push_back({m, m + 2});
  EXPECT_EQ(Sides(all), expected);
  EXPECT_EQ(all.total, 14);
  EXPECT_TRUE(all.progress);
  for (const PrintedSide& side : all.sides) EXPECT_LT(side.lower, 0) << "every page is drawn whole";
  // A range counts the months from one and tells the bar the page index;
  // 13 is the year page and 14 the cover, unlike the order of all pages.
  const PrintPlan range = SingleSidedPlan(PageChoice::Range, 3, 5, 0);
  EXPECT_EQ(Sides(range), (std::vector<std::pair<int, int>>{{2, 2}, {3, 3}, {4, 4}}));
  EXPECT_EQ(range.total, 3);
  EXPECT_EQ(Sides(SingleSidedPlan(PageChoice::Range, 13, 14, 0)), (std::vector<std::pair<int, int>>{{12, 12}, {13, 13}}));
  // Numbers the dialog should never give print nothing outside the calendar.
  EXPECT_EQ(SingleSidedPlan(PageChoice::Range, 0, 20, 0).sides.size(), 14u);
  EXPECT_TRUE(SingleSidedPlan(PageChoice::Range, 5, 3, 0).sides.empty());
  // The selection is the page on the screen, without a bar.
  const PrintPlan selection = SingleSidedPlan(PageChoice::Selection, 3, 5, 12);
  EXPECT_EQ(Sides(selection), (std::vector<std::pair<int, int>>{{12, 0}}));
  EXPECT_FALSE(selection.progress);
  EXPECT_TRUE(SingleSidedPlan(PageChoice::Selection, 1, 1, 14).sides.empty());
}

TEST(PrintPlan, TheBookletsPassesCarryEveryPageHalfExactlyOnce) {
  const PrintPlan fronts = BookletPassPlan(0, true), backs = BookletPassPlan(1, false),
                  faceUpBacks = BookletPassPlan(1, true);
  ASSERT_EQ(fronts.sides.size(), 7u);
  ASSERT_EQ(backs.sides.size(), 7u);
  ASSERT_EQ(faceUpBacks.sides.size(), 7u);
  std::multiset<int> uppers, lowers;
  for (int j = 0; j < 7; ++j) {
    // The fronts always go sheet 0 to 6; "Face up" only turns the backs round.
    EXPECT_EQ(BackPassSheet(j, false), j);
    EXPECT_EQ(BackPassSheet(j, true), 6 - j);
    EXPECT_EQ(fronts.sides[j].upper, BookletSheets[j].frontUpper);
    EXPECT_EQ(fronts.sides[j].lower, BookletSheets[j].frontLower);
    EXPECT_EQ(backs.sides[j].upper, BookletSheets[j].backUpper);
    EXPECT_EQ(backs.sides[j].lower, BookletSheets[j].backLower);
    EXPECT_EQ(faceUpBacks.sides[j].upper, BookletSheets[6 - j].backUpper);
    EXPECT_EQ(faceUpBacks.sides[j].lower, BookletSheets[6 - j].backLower);
    EXPECT_EQ(faceUpBacks.sides[j].current, j) << "the bar counts the sheets printed";
    uppers.insert({fronts.sides[j].upper, backs.sides[j].upper});
    lowers.insert({fronts.sides[j].lower, backs.sides[j].lower});
  }
  EXPECT_EQ(fronts.total, 7);
  std::multiset<int> all;
  for (int page = 0; page < 14; ++page) all.insert(page);
  EXPECT_EQ(uppers, all);
  EXPECT_EQ(lowers, all);
}

TEST(ProgressBar, TheDonePartGrowsFromTheLeft) {
  // "total,current" as the bar's text holds it, and the done part's right edge
  // in a bar 100 wide; current = total - 1 fills the bar, never beyond, and a
  // single step divides by 1, not 0.
  const struct {
    const char* text;
    int right;  // -1: not understood
  } cases[] = {{"", -1}, {"junk", -1}, {"14,0", 0}, {"14,3", 23}, {"14,13", 100}, {"12,40", 100}, {"1,0", 0}};
  for (const auto& c : cases) {
    int right = -1;
    EXPECT_EQ(ProgressDoneRight(c.text, 100, &right), c.right >= 0) << c.text;
    if (c.right >= 0) {
      EXPECT_EQ(right, c.right) << c.text;
    }
  }
}
