// The shape of the page on the screen: it follows the printer's paper, so
// that what the user lays out is what comes out of the printer.
#pragma once
#include <cstdint>

#include "base/geometry.h"

// The page as the screen shows it at 100 percent: 95 percent of the client
// height, shaped like the printer's page, or 360 : 460 without a printer.
Rect PageRectForClient(int32_t clientHeight, bool havePrinter, int32_t printerWidth, int32_t printerHeight);
