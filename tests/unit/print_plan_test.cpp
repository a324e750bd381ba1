#include <set>
#include <vector>

#include "print/booklet.h"
#include "print/print_plan.h"
#include "test_support.h"

namespace {

std::vector<int> Uppers(const PrintPlan& plan) {
  std::vector<int> pages;
  for (const PrintedSide& side : plan.sides) pages.push_back(side.upper);
  return pages;
}

std::vector<int> Currents(const PrintPlan& plan) {
  std::vector<int> currents;
  for (const PrintedSide& side : plan.sides) currents.push_back(side.current);
  return currents;
}

}  // namespace

TEST(PrintPlan, TheDialogsPageChoiceIsInTheLowBits) {
  EXPECT_EQ(PageChoiceFromFlags(0x84000), PageChoice::All);
  EXPECT_EQ(PageChoiceFromFlags(0x84000 | 1), PageChoice::Selection);
  EXPECT_EQ(PageChoiceFromFlags(0x84000 | 2), PageChoice::Range);
}

TEST(PrintPlan, AllPagesGoCoverYearThenTheMonthsAndFillTheBar) {
  const PrintPlan plan = SingleSidedPlan(PageChoice::All, 1, 1, 5);
  EXPECT_EQ(Uppers(plan), (std::vector<int>{13, 12, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
  EXPECT_EQ(Currents(plan), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
  EXPECT_EQ(plan.total, 14);
  EXPECT_TRUE(plan.progress);
  for (const PrintedSide& side : plan.sides) EXPECT_LT(side.lower, 0) << "every page is drawn whole";
}

TEST(PrintPlan, ARangeCountsTheMonthsFromOneAndReportsPageIndices) {
  // Pages 3 to 5 are PageIndex 2 to 4; the bar is told the page index.
  PrintPlan plan = SingleSidedPlan(PageChoice::Range, 3, 5, 0);
  EXPECT_EQ(Uppers(plan), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(Currents(plan), (std::vector<int>{2, 3, 4}));
  EXPECT_EQ(plan.total, 3);
  // 13 is the year page and 14 the cover, unlike the order of all pages.
  EXPECT_EQ(Uppers(SingleSidedPlan(PageChoice::Range, 13, 14, 0)), (std::vector<int>{12, 13}));
  // Numbers the dialog should never give print nothing outside the calendar.
  EXPECT_EQ(Uppers(SingleSidedPlan(PageChoice::Range, 0, 20, 0)).size(), 14u);
  EXPECT_TRUE(SingleSidedPlan(PageChoice::Range, 5, 3, 0).sides.empty());
}

TEST(PrintPlan, TheSelectionIsThePageOnTheScreenWithoutABar) {
  PrintPlan plan = SingleSidedPlan(PageChoice::Selection, 3, 5, 12);
  EXPECT_EQ(Uppers(plan), (std::vector<int>{12}));
  EXPECT_FALSE(plan.progress);
  EXPECT_TRUE(SingleSidedPlan(PageChoice::Selection, 1, 1, 14).sides.empty());
}

TEST(PrintPlan, TheBookletsPassesCarryTheHalvesOfTheSheets) {
  const PrintPlan fronts = BookletPassPlan(0, true);
  const PrintPlan backs = BookletPassPlan(1, false);
  const PrintPlan faceUpBacks = BookletPassPlan(1, true);
  ASSERT_EQ(fronts.sides.size(), 7u);
  ASSERT_EQ(backs.sides.size(), 7u);
  ASSERT_EQ(faceUpBacks.sides.size(), 7u);
  std::multiset<int> uppers, lowers;
  for (int j = 0; j < 7; ++j) {
    // The fronts always go sheet 0 to 6; "Face up" only turns the backs round.
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
  // Every page's two halves reach the paper exactly once.
  std::multiset<int> all;
  for (int page = 0; page < 14; ++page) all.insert(page);
  EXPECT_EQ(uppers, all);
  EXPECT_EQ(lowers, all);
}
