#include "calendar/replicate.h"

bool ReplicateMonth(CalendarDocument document, int source, const bool targets[12]) {
  CalendarHeader header;
  MonthPage from;
  if (!GetHeader(document, &header) || !GetMonthPage(document, source, &from)) return false;
  for (int month = 0; month < 12; ++month) {
    if (!targets[month] || month == source) continue;
    MonthPage target;
    if (!GetMonthPage(document, month, &target)) return false;
    FreeMonthPage(&target);
    // A copy that fails leaves the target empty rather than sharing a block.
    CopyMonthPage(&target, &from);
    if (!PutMonthPage(document, month, &target)) {
      FreeMonthPage(&target);
      return false;
    }
  }
  header.Changed = 1;
  return PutHeader(document, &header);
}
