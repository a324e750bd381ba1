// Which pages a print job puts on paper, in which order, and what its
// progress bar shows after each: the print jobs' arithmetic, apart from the
// printer itself.
#pragma once
#include <vector>

// The page choice of the print dialog.
enum class PageChoice { All, Range, Selection };
// The choice from the dialog's flags (their low three bits).
PageChoice PageChoiceFromFlags(unsigned long flags);

// One sheet side: the whole page `upper` when `lower` is negative, else the
// upper (picture) half of `upper` over the lower (calendar) half of `lower`.
struct PrintedSide {
  int upper, lower;
  int current;  // the progress bar's "current" once the side is out
};

struct PrintPlan {
  std::vector<PrintedSide> sides;
  int total = 0;          // the progress bar's "total"
  bool progress = false;  // whether the job shows the progress box at all
};

// Single-sided: all pages go cover, year, January..December; a range counts
// the dialog's pages 1..12 as the months, 13 the year and 14 the cover;
// the selection is the page on the screen, `currentPage`.
PrintPlan SingleSidedPlan(PageChoice choice, int from, int to, int currentPage);
// Double-sided: pass 0 prints the fronts of sheets 0..6, pass 1 the backs,
// in reverse for a printer that lays its paper face up.
PrintPlan BookletPassPlan(int pass, bool faceUp);
