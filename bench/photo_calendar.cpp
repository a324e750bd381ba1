#include "bench/photo_calendar.h"

#include <cmath>
#include <vector>

#include "base/dib.h"

BlockHandle PhotoLikePicture(int32_t width, int32_t height, uint32_t seed) {
  BlockHandle dib = DibCreate(width, height, 24);
  BlockLock lock(dib);
  if (!lock) return dib;
  uint8_t* bits = DibBits(lock.bytes());
  const size_t stride = DibRowStride(width, 24);
  // The gradient is a row term plus a column term scaled down the picture:
  // two tables, so making twelve 12-megapixel pictures takes about a second.
  const double phase = seed * 0.7;
  std::vector<double> across(static_cast<size_t>(width) * 3), down(static_cast<size_t>(height) * 3);
  for (int32_t x = 0; x < width; ++x) {
    const double f = static_cast<double>(x) / width;
    across[x * 3] = 90 * std::sin(3 * f + phase);
    across[x * 3 + 1] = 80 * std::cos(2 * f + phase);
    across[x * 3 + 2] = 70 * std::sin(5 * f + phase);
  }
  for (int32_t y = 0; y < height; ++y) {
    const double f = static_cast<double>(y) / height;
    down[y * 3] = 120 + 40 * std::cos(4 * f + phase);
    down[y * 3 + 1] = 110 + 50 * std::sin(3 * f + seed);
    down[y * 3 + 2] = 100 + 30 * std::cos(2 * f + phase);
  }
  uint32_t noise = seed * 2654435761u + 1;
  for (int32_t y = 0; y < height; ++y) {
    uint8_t* row = bits + y * stride;
    const double fy = static_cast<double>(y) / height;
    for (int32_t i = 0; i < width * 3; ++i) {
      noise = noise * 1664525u + 1013904223u;
      const int v = static_cast<int>(down[y * 3 + i % 3] + across[i] * fy) + static_cast<int>((noise >> 24) % 7) - 3;
      row[i] = static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v);
    }
  }
  return dib;
}

CalendarDocument PhotoCalendar(int year, int32_t width, int32_t height, int months, bool cover) {
  CalendarDocument doc = CreateCalendar(year, 0);
  if (!doc) return 0;
  for (int m = 0; m < months && m < 12; ++m) {
    MonthPage page;
    GetMonthPage(doc, m, &page);
    page.Picture = PhotoLikePicture(width, height, static_cast<uint32_t>(m + 1));
    page.PictureShowPicture = 1;
    PutMonthPage(doc, m, &page);
    if (!page.Picture) {
      FreeCalendar(doc);
      return 0;
    }
  }
  if (cover) {
    CalendarHeader header;
    GetHeader(doc, &header);
    header.CoverPicture = PhotoLikePicture(width, height, 13);
    header.CoverPictureShowPicture = 1;
    PutHeader(doc, &header);
    if (!header.CoverPicture) {
      FreeCalendar(doc);
      return 0;
    }
  }
  return doc;
}
