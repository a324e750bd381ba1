#include "print/page_shape.h"

#include <algorithm>

Rect PageRectForClient(int32_t clientHeight, bool havePrinter, int32_t printerWidth, int32_t printerHeight) {
  const int32_t h = clientHeight * 95 / 100;
  const int32_t w = havePrinter ? static_cast<int32_t>(int64_t(h) * printerWidth / std::max(printerHeight, 1))
                                : h * 360 / 460;
  return {0, 0, w, h};
}
