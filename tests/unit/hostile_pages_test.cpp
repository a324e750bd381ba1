// Pages of records that no editor makes, as damaged or hostile files hold
// them: every number at the ends of its range. Each page must still be drawn
// with a bounded number of calls, coordinates a device can take, fonts no
// taller than the page, and (under the sanitizers) no overflow.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "calendar/calendar_model.h"
#include "ops_parse.h"
#include "test_support.h"

TEST(HostilePages, EveryPageIsBoundedWhateverItsNumbers) {
  const struct {
    uint32_t value;
    int32_t year;
  } cases[] = {{0x80000000u, INT32_MIN}, {0x7FFFFFFFu, INT32_MAX}, {0xFFFFFFFFu, -1},
               {100000, 2026},            {0xFFFF8000u, 0}};
  const Rect pages[] = {{0, 0, 2480, 3508}, {0, 0, 360, 460}, {1, 1, 3, 3}};
  for (const auto& c : cases) {
    CalendarDocument doc = HostileCalendar(c.value, c.year);
    for (const Rect& page : pages) {
      for (int index = 0; index < 14; ++index) {
        SCOPED_TRACE(testing::Message() << std::hex << c.value << std::dec << " page " << index << " of "
                                        << Height(page));
        const std::vector<Op> ops = RenderOps(doc, index, page, false);
        ASSERT_FALSE(ops.empty());
        EXPECT_LT(ops.size(), 2000u);
        for (const Op& op : ops) {
          for (int32_t v : {op.r.left, op.r.top, op.r.right, op.r.bottom}) ASSERT_LE(std::abs(v), 1 << 30) << op.line;
          if (op.kind == "text") {
            ASSERT_LE(std::atoi(op.font.c_str()), Height(page)) << op.line;
          }
        }
      }
    }
    FreeCalendar(doc);
  }
}
