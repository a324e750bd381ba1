// What the page renderers draw on: the subset of GDI they use, with GDI's
// meaning. Three back ends implement it: GDI (the screen and the printer in
// Quernal.exe), Cairo with Pango (PNG, PDF and SVG in quernal-cli) and an
// operations dump (one text line per drawing call, for tests).
//
// State follows a device context: a current font, pen, brush and text colour,
// a viewport origin that offsets every coordinate, a clip rectangle, and
// SaveState/RestoreState around them. Fonts, pens and brushes are made for one
// drawing stage; EndStage releases everything the stage made.
#pragma once
#include <cstdint>
#include <string>

#include "base/geometry.h"
#include "base/global_block.h"

struct FontSpec {
  int32_t height;  // cell height in device units; 0 or less: the system's default size
  int32_t weight;  // 400 normal, 700 bold, as stored
  int32_t italic;  // 0 or 1
  std::string face;
};

// A solid pen one pixel wide, or none; a solid brush, or none.
struct PenSpec {
  bool none;
  Colour colour;
};
struct BrushSpec {
  bool none;
  Colour colour;
};
inline PenSpec SolidPen(Colour c) { return {false, c}; }
inline BrushSpec SolidBrush(Colour c) { return {false, c}; }
constexpr PenSpec kNullPen{true, 0};
constexpr BrushSpec kNullBrush{true, 0};

// The rings of a soft shadow at the current origin: ring i of n is the
// rounded rectangle {n/2 + i, n/2 + i, width + n - i, height + n - i} with
// n x n corners, filled without a pen in the blend of weight i / n * 255 of
// the shadow over the background colour, each ring over the one before.
// Which rings are drawn, their rectangles and colours: primitives.h.
struct ShadowRings {
  int64_t width, height, n;
  Colour shadow, background;
  int64_t first;  // the rings before it cannot show: it covers them wherever drawing can reach
  bool bounded;   // whether `visible` is known
  Rect visible;   // where drawing can reach; rings wholly outside it are skipped
};

class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void SetFont(const FontSpec& font) = 0;
  virtual void SetPen(const PenSpec& pen) = 0;
  virtual void SetBrush(const BrushSpec& brush) = 0;
  virtual void SetTextColour(Colour colour) = 0;
  // Releases the fonts, pens and brushes made since the last EndStage; the
  // next drawing call must set what it needs again.
  virtual void EndStage() = 0;

  // FillRect and FrameRect: a solid colour, no pen or brush involved.
  virtual void FillRect(const Rect& r, Colour colour) = 0;
  virtual void FrameRect(const Rect& r, Colour colour) = 0;
  // Rectangle and RoundRect with the current pen and brush; right and bottom
  // are exclusive, as in GDI.
  virtual void Rectangle(const Rect& r) = 0;
  virtual void RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) = 0;
  // DrawText of a Windows-1252 text with the current font and text colour and
  // a transparent background. With kDtCalcRect nothing is drawn and `r`
  // receives the measured rectangle. Returns the height of the text.
  virtual int32_t DrawText(const std::string& text, Rect* r, uint32_t format) = 0;
  // The Dib stretched to {0, 0, width, height} at the viewport origin. The
  // printer path draws from the Dib itself, the screen path through a
  // device bitmap; back ends without that difference ignore `printing`.
  virtual void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) = 0;
  // The same picture, and round it, as far as the clip reaches, its edge
  // pixels repeated: the bleed of a picture that reaches the paper's edge.
  // A canvas that cannot repeat them draws the picture alone.
  virtual void DrawPictureExtended(BlockHandle dib, int32_t width, int32_t height, bool printing) {
    DrawPicture(dib, width, height, printing);
  }

  virtual void SaveState() = 0;
  virtual void RestoreState() = 0;
  // Where logical (0, 0) goes, as SetViewportOrgEx, measured from the origin
  // the device had when the canvas was made (normally the device's corner).
  virtual void SetOrigin(int32_t x, int32_t y) = 0;
  // Limits drawing to `r` (logical coordinates at the current origin) until Unclip.
  virtual void Clip(const Rect& r) = 0;
  virtual void Unclip() = 0;

  // The rings with a null pen; leaves the brush unset. The default draws
  // them one RoundRect at a time; a canvas may give the same pixels faster.
  virtual void DrawShadowRings(const ShadowRings& rings);
  // The part of the device drawing can reach (the clip within the device),
  // in logical coordinates at the current origin; false when it cannot tell.
  virtual bool VisibleBox(Rect* box) {
    (void)box;
    return false;
  }

  // The system colour of button shadows, which frames the page on screen.
  virtual Colour ButtonShadowColour() = 0;
};
