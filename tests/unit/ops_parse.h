// Reading back what the operations canvas wrote, for geometry tests.
#pragma once
#include <string>
#include <vector>

#include "base/geometry.h"
#include "calendar/calendar_model.h"

struct Op {
  std::string kind;        // fill, frame, rect, roundrect, text, picture, clip, unclip
  Rect r{0, 0, 0, 0};
  int ellipse = 0;         // roundrect
  std::string colour;      // fill, frame: the colour; text: color=
  std::string pen, brush;  // rect, roundrect
  int flags = 0;           // text
  std::string font;        // text: HEIGHT,WEIGHT,ITALIC,"FACE"
  std::string text;        // text, unescaped
  std::string line;        // the whole line
};

std::vector<Op> ParseOps(const std::string& ops);
// Draws one page of `document` on an operations canvas and parses it.
std::vector<Op> RenderOps(CalendarDocument document, int pageIndex, const Rect& page, bool printing = true,
                          bool upper = true, bool lower = true);
// The ops of one kind, optionally only those whose text or colour matches.
std::vector<Op> OfKind(const std::vector<Op>& ops, const std::string& kind);
// The whole lines, to compare with what a test expects.
std::vector<std::string> Lines(const std::vector<Op>& ops);
std::vector<Op> Texts(const std::vector<Op>& ops, const std::string& colour);
