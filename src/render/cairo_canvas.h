// A canvas over a Cairo context, for PNG, PDF and SVG output. Coordinates are
// device pixels (the caller scales the context for vector surfaces). Text is
// laid out with Pango to honour the DrawText bits the renderers use: the
// three alignments, single lines with vertical centring or bottom placement,
// word breaking, measuring, and clipping to the rectangle as DrawText does.
// Fonts are found through fontconfig, so "ARIAL" finds a face with the same
// metrics. Pictures are resampled with a filter fit for large downscales.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "render/canvas.h"

typedef struct _cairo cairo_t;
typedef struct _PangoLayout PangoLayout;

class CairoCanvas : public Canvas {
 public:
  explicit CairoCanvas(cairo_t* cr);
  ~CairoCanvas() override;
  CairoCanvas(const CairoCanvas&) = delete;
  CairoCanvas& operator=(const CairoCanvas&) = delete;

  void SetFont(const FontSpec& font) override { state_.font = font; }
  void SetPen(const PenSpec& pen) override { state_.pen = pen; }
  void SetBrush(const BrushSpec& brush) override { state_.brush = brush; }
  void SetTextColour(Colour colour) override { state_.textColour = colour; }
  void EndStage() override;
  void FillRect(const Rect& r, Colour colour) override;
  void FrameRect(const Rect& r, Colour colour) override;
  void Rectangle(const Rect& r) override;
  void RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) override;
  int32_t DrawText(const std::string& text, Rect* r, uint32_t format) override;
  void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool) override { Picture(dib, width, height, false); }
  void DrawPictureExtended(BlockHandle dib, int32_t width, int32_t height, bool) override {
    Picture(dib, width, height, true);
  }
  void SaveState() override;
  void RestoreState() override;
  void SetOrigin(int32_t x, int32_t y) override { state_.originX = x, state_.originY = y; }
  void Clip(const Rect& r) override;
  void Unclip() override;
  void DrawShadowRings(const ShadowRings& rings) override;
  bool VisibleBox(Rect* box) override;
  Colour ButtonShadowColour() override { return 0xA0A0A0; }
  // Pictures drawn from now on carry a JPEG of `quality` for a PDF to embed
  // (0, the start: none, the PDF compresses their pixels losslessly).
  void SetPictureJpegQuality(int quality) { jpegQuality_ = quality; }

 private:
  int jpegQuality_ = 0;
  struct State {
    FontSpec font{0, 400, 0, "ARIAL"};
    PenSpec pen{false, 0};
    BrushSpec brush{false, 0xFFFFFF};
    Colour textColour = 0;
    int32_t originX = 0, originY = 0;
  };
  // The shape of Rectangle and RoundRect filled with the brush and outlined with the pen.
  void Shape(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight);
  void SetColour(Colour c);
  // DrawPicture, with its edge pixels repeated over the clip when `extended`.
  void Picture(BlockHandle dib, int32_t width, int32_t height, bool extended);
  // Whether a unit is a pixel of an image surface, without scaling; the
  // pixel of user (0, 0) is then (*shiftX, *shiftY).
  bool PixelsAreDevicePixels(int* shiftX, int* shiftY);
  // Resamples the part of a Dib straight into the target's pixels where that
  // is the same as painting it; false where it is not.
  bool ResampleOntoTarget(const uint8_t* dib, int width, int height, const Rect& part);
  // Sets up the layout for `text` in the current font; returns its size in pixels.
  void Layout(const std::string& text, int32_t width, uint32_t format, int32_t* textW, int32_t* textH);
  double PangoSizeFor(const FontSpec& font);

  cairo_t* cr_;
  PangoLayout* layout_;
  State state_;
  std::vector<State> saved_;
  std::map<std::string, double> cellToEm_;  // face/weight/style -> cell height per em
};
