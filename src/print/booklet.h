// The folded booklet: seven sheets printed on both sides, stapled in the
// middle. Each side carries the upper (picture) half of one page and the lower
// (calendar) half of another, so that every month's picture faces its dates
// once the booklet hangs open.
#pragma once

struct BookletSheet {
  int frontUpper, frontLower, backUpper, backLower;  // PageIndex values
};

constexpr int kBookletSheetCount = 7;
extern const BookletSheet BookletSheets[kBookletSheetCount];

// The sheet printed j-th (0..6) on the second pass. A printer that lays its
// paper face up ("Face up") needs the backs in reverse order.
int BackPassSheet(int j, bool faceUp);
