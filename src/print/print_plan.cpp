#include "print/print_plan.h"

#include <algorithm>

#include "print/booklet.h"

namespace {
constexpr int kYearPage = 12, kCoverPage = 13, kPageCount = 14;
}

PageChoice PageChoiceFromFlags(unsigned long flags) {
  // The dialog's PD_SELECTION (1) and PD_PAGENUMS (2); neither is all pages.
  if (flags & 1) return PageChoice::Selection;
  if (flags & 2) return PageChoice::Range;
  return PageChoice::All;
}

PrintPlan SingleSidedPlan(PageChoice choice, int from, int to, int currentPage) {
  PrintPlan plan;
  switch (choice) {
    case PageChoice::All:
      plan.total = kPageCount;
      plan.progress = true;
      plan.sides.push_back({kCoverPage, -1, 0});
      plan.sides.push_back({kYearPage, -1, 1});
      for (int month = 0; month < 12; ++month) plan.sides.push_back({month, -1, month + 2});
      break;
    case PageChoice::Range:
      // The bar is given the page index, not the count done, so a range
      // that starts late shows a fuller bar than it should.
      plan.total = to - from + 1;
      plan.progress = true;
      for (int p = std::max(from, 1); p <= std::min(to, kPageCount); ++p) plan.sides.push_back({p - 1, -1, p - 1});
      break;
    case PageChoice::Selection:
      if (currentPage >= 0 && currentPage < kPageCount) plan.sides.push_back({currentPage, -1, 0});
      break;
  }
  return plan;
}

PrintPlan BookletPassPlan(int pass, bool faceUp) {
  PrintPlan plan;
  plan.total = kBookletSheetCount;
  plan.progress = true;
  for (int j = 0; j < kBookletSheetCount; ++j) {
    if (pass == 0) {
      plan.sides.push_back({BookletSheets[j].frontUpper, BookletSheets[j].frontLower, j});
    } else {
      const BookletSheet& sheet = BookletSheets[BackPassSheet(j, faceUp)];
      plan.sides.push_back({sheet.backUpper, sheet.backLower, j});
    }
  }
  return plan;
}
