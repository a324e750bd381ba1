// The canvas of the screen and the printer: every call is the GDI call of
// the same name on a device context.
//
// Fonts, pens and brushes made during a stage are kept, up to kCachePerKind
// of each kind, so switching back and forth between two fonts does not make
// a new font each time. EndStage (and the destructor) selects the device
// context's own objects back and deletes them. Renderers end their stages
// outside SaveState/RestoreState, so no saved state refers to a deleted object.
#pragma once
#include <windows.h>
// The program calls DrawTextA by name; the DrawText macro would rename the
// canvas method in every file that includes this one.
#undef DrawText

#include <vector>

#include "render/canvas.h"

class ScreenPictureCache;

class GdiCanvas : public Canvas {
 public:
  // Logical (0, 0) stays where the device context's viewport origin puts it,
  // so a page can be drawn anywhere on the device by setting that first.
  // The screen's canvas draws pictures from `pictures`, the copy a window
  // keeps, and drops it when the page drew no picture through it.
  explicit GdiCanvas(HDC dc, ScreenPictureCache* pictures = nullptr);
  ~GdiCanvas() override;
  GdiCanvas(const GdiCanvas&) = delete;
  GdiCanvas& operator=(const GdiCanvas&) = delete;

  void SetFont(const FontSpec& font) override;
  void SetPen(const PenSpec& pen) override;
  void SetBrush(const BrushSpec& brush) override;
  void SetTextColour(Colour colour) override;
  void EndStage() override;

  void FillRect(const Rect& r, Colour colour) override;
  void FrameRect(const Rect& r, Colour colour) override;
  void Rectangle(const Rect& r) override;
  void RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) override;
  int32_t DrawText(const std::string& text, Rect* r, uint32_t format) override;
  void DrawPicture(BlockHandle dib, int32_t width, int32_t height, bool printing) override;

  void SaveState() override;
  void RestoreState() override;
  // The viewport origin, relative to the one the device context had when the
  // canvas was made (usually (0, 0), where this is SetViewportOrgEx itself).
  void SetOrigin(int32_t x, int32_t y) override;
  void Clip(const Rect& r) override;
  void Unclip() override;
  Colour ButtonShadowColour() override;
  bool VisibleBox(Rect* box) override;

  // Objects a stage keeps per kind before it deletes the least recently used.
  static constexpr size_t kCachePerKind = 8;

 private:
  // The fonts, pens or brushes that the current stage made.
  struct Made {
    FontSpec font;  // fonts only
    Colour colour;  // pens and brushes only
    HGDIOBJ object;
  };
  struct Kind {
    std::vector<Made> made;      // least recently used first
    HGDIOBJ original = nullptr;  // what the device context held before the stage
    HGDIOBJ selected = nullptr;  // what is selected now
  };
  // What was selected when SaveState was called: RestoreState selects it
  // again, so it must not be deleted before then.
  struct Selection {
    HGDIOBJ font, pen, brush;
  };

  template <class Matches, class Make>
  void SelectMade(Kind& kind, Matches matches, Make make);
  void Select(Kind& kind, HGDIOBJ object);
  void MakeRoom(Kind& kind);
  bool Pinned(HGDIOBJ object) const;
  bool PrintReduced(BlockHandle dib, int32_t width, int32_t height);
  void EndKind(Kind& kind);

  HDC dc_;
  ScreenPictureCache* pictures_;
  bool pictureKept_ = false;  // a picture was drawn through pictures_
  POINT baseOrigin_{0, 0};
  Kind fonts_, pens_, brushes_;
  std::vector<Selection> saved_;
};
