// A canvas that writes one text line per drawing call, in absolute page
// coordinates (the viewport origin applied), with colours as #RRGGBB:
//   fill L T R B #RRGGBB            frame L T R B #RRGGBB
//   rect L T R B pen=#RRGGBB|none brush=#RRGGBB|none
//   roundrect L T R B EW EH pen=... brush=...
//   text L T R B flags=N color=#RRGGBB font=HEIGHT,WEIGHT,ITALIC,"FACE" "TEXT"
//   picture L T R B                 clip L T R B        unclip
// Measuring calls (kDtCalcRect) are not listed. Text is measured by a fixed
// rule, so the output is the same on every machine: a line is the font height
// tall, every character half the font height wide, and word breaking happens
// at spaces and line breaks.
#pragma once
#include <string>
#include <vector>

#include "render/canvas.h"

class OpsCanvas : public Canvas {
 public:
  const std::string& ops() const { return out_; }

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
  void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) override;
  void SaveState() override { saved_.push_back(state_); }
  void RestoreState() override;
  void SetOrigin(int32_t x, int32_t y) override { state_.originX = x, state_.originY = y; }
  void Clip(const Rect& r) override;
  void Unclip() override;
  // The clip, when one is set: the page itself has no edge.
  bool VisibleBox(Rect* box) override;
  Colour ButtonShadowColour() override { return 0xA0A0A0; }

  // The lines the fixed rule breaks `text` into for a width of `width`.
  static std::vector<std::string> BreakLines(const std::string& text, int32_t charWidth, int32_t width,
                                             uint32_t format);

 private:
  struct State {
    FontSpec font{0, 400, 0, "System"};
    PenSpec pen{false, 0};
    BrushSpec brush{false, 0xFFFFFF};
    Colour textColour = 0;
    int32_t originX = 0, originY = 0;
    bool clipped = false;
    Rect clip{0, 0, 0, 0};  // in page coordinates; a new clip replaces the old, as SelectClipRgn
  };
  std::string Place(const Rect& r) const;
  void Line(const std::string& line) { out_ += line + "\n"; }
  State state_;
  std::vector<State> saved_;
  std::string out_;
};

// "#RRGGBB" of a COLORREF.
std::string HexColour(Colour c);
