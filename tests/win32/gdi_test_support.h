// Drawing tests under Wine: a 24-bit Dib section in a memory device context
// whose pixels can be read back, and a count of the process's GDI objects.
#pragma once
#include <windows.h>

#include <cstdint>

#include "base/global_block.h"

class DibSurface {
 public:
  DibSurface(int width, int height, COLORREF fill);
  ~DibSurface();
  DibSurface(const DibSurface&) = delete;
  DibSurface& operator=(const DibSurface&) = delete;
  HDC dc() const { return dc_; }
  COLORREF Pixel(int x, int y) const;
  // Pixels of exactly `colour` in {left, top, right, bottom}, right and bottom exclusive.
  int Count(int left, int top, int right, int bottom, COLORREF colour) const;
  // Pixels that differ from those of a surface of the same size.
  int Differing(const DibSurface& other) const;

 private:
  int width_, height_, stride_;
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ previous_;
  uint8_t* bits_;
};

// The GDI objects this process holds. Wine's GetGuiResources reports 0, but
// Wine also accepts a handle given by its table index alone, so there the
// live entries of the table are counted.
int LiveGdiObjects();

// A 24-bit Dib of one colour.
BlockHandle SolidDib(int width, int height, COLORREF colour);
