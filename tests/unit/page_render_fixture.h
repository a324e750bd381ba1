// A calendar drawn on a 700 x 1000 page through the operations canvas: the
// fixture of the month page and the year page and cover geometry tests.
#pragma once
#include <string>
#include <vector>

#include "ops_parse.h"
#include "test_support.h"

class PageRenderTest : public QuernalTest {
 protected:
  void TearDown() override {
    if (doc_) FreeCalendar(doc_);
    QuernalTest::TearDown();
  }
  // A new calendar in place of the one before.
  void NewCalendar(int32_t year, int32_t month = 0) {
    if (doc_) FreeCalendar(doc_);
    doc_ = CreateCalendar(year, month);
  }
  void EditHeader(void (*change)(CalendarHeader*)) {
    CalendarHeader h;
    GetHeader(doc_, &h);
    change(&h);
    PutHeader(doc_, &h);
  }
  void EditMonth(int month, void (*change)(MonthPage*)) {
    MonthPage p;
    GetMonthPage(doc_, month, &p);
    change(&p);
    PutMonthPage(doc_, month, &p);
  }
  std::vector<Op> Render(int page, bool printing = true, bool upper = true, bool lower = true) {
    return RenderOps(doc_, page, kPage, printing, upper, lower);
  }
  // The text ops that read `text`, in the order drawn.
  static std::vector<Op> Titled(const std::vector<Op>& ops, const std::string& text) {
    std::vector<Op> out;
    for (const Op& op : OfKind(ops, "text"))
      if (op.text == text) out.push_back(op);
    return out;
  }

  const Rect kPage{0, 0, 700, 1000};
  CalendarDocument doc_ = 0;
};
