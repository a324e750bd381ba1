#include "app/window_layout.h"

#include <algorithm>

#include "res/main_ids.h"
#include "base/text.h"

namespace {
constexpr uint32_t kNone = 4294967295u;
}

void DefaultWindowSize(int32_t screenHeight, int32_t* width, int32_t* height) {
  *height = screenHeight * 95 / 100;
  *width = *height * 360 / 460;
}

bool RestoredPosition(const StoredEdges& e, int32_t screenWidth, int32_t screenHeight, int32_t* x, int32_t* y) {
  if (e.left == kNone || e.top == kNone || e.right == kNone || e.bottom == kNone) return false;
  *x = std::max<int64_t>(std::min<int64_t>(static_cast<int32_t>(e.left), screenWidth - 620), 0);
  *y = std::max<int64_t>(std::min<int64_t>(static_cast<int32_t>(e.top), screenHeight - 460), 0);
  return true;
}

StoredEdges EdgesToStore(const Rect& r, int32_t screenWidth, int32_t screenHeight) {
  return {static_cast<uint32_t>(std::max(r.left, 0)), static_cast<uint32_t>(std::max(r.top, 0)),
          static_cast<uint32_t>(std::min(r.right, screenWidth)), static_cast<uint32_t>(std::min(r.bottom, screenHeight))};
}

Rect ZoomedPage(const Rect& page, int32_t percent) {
  return {page.left * percent / 100, page.top * percent / 100, page.right * percent / 100,
          page.bottom * percent / 100};
}

std::string WindowTitle(const std::string& productName, const std::string& label) {
  return productName + " [ " + label + " ]";
}

std::string DocumentLabel(const std::string& path, const std::string& pageName) {
  return std::string(FileNamePart(path.c_str())) + " \x96 " + pageName;
}

bool CommandActsOnPage(int command, int page) {
  const bool monthOnly = command == IDM_EDIT_MONTH || command == IDM_REPLICATE || command == IDM_EVENTS;
  return !monthOnly || (page >= 0 && page < 12);
}

namespace {

// How far one side of the window moves to meet its side of the work area,
// 0 when it is too far away.
int32_t Pull(int32_t side, int32_t edge, int32_t distance) {
  const int32_t gap = edge - side;
  return gap >= -distance && gap <= distance ? gap : 0;
}

}  // namespace

Rect SnappedToEdges(const Rect& window, const Rect& work, int32_t distance) {
  int32_t dx = Pull(window.left, work.left, distance);
  if (dx == 0) dx = Pull(window.right, work.right, distance);
  int32_t dy = Pull(window.top, work.top, distance);
  if (dy == 0) dy = Pull(window.bottom, work.bottom, distance);
  return Offset(window, dx, dy);
}
