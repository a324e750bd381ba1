#include "editors/colour_caption.h"

bool CaptionIsWhite(uint32_t c) {
  const uint32_t red = c & 0xFF, green = c >> 8 & 0xFF, blue = c >> 16 & 0xFF;
  return red * 30 / 100 + green * 59 / 100 + blue * 11 / 100 < 129;
}

std::string ColourValueText(uint32_t c) {
  return std::to_string(c & 0xFF) + "," + std::to_string(c >> 8 & 0xFF) + "," + std::to_string(c >> 16 & 0xFF);
}
