#include "render/ops_canvas.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"

namespace {

constexpr int32_t kDefaultFontHeight = 16;  // what a font of height 0 or less gets

std::string Quoted(const std::string& text) {
  std::string out = "\"";
  for (char c : Cp1252ToUtf8(text)) {
    if (c == '"' || c == '\\') out += '\\';
    if (c == '\n') out += "\\n";
    else if (c == '\r') out += "\\r";
    else out += c;
  }
  return out + "\"";
}

std::string PenText(const PenSpec& p) { return p.none ? "none" : HexColour(p.colour); }
std::string BrushText(const BrushSpec& b) { return b.none ? "none" : HexColour(b.colour); }

}  // namespace

std::string HexColour(Colour c) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", RedOf(c), GreenOf(c), BlueOf(c));
  return text;
}

std::string OpsCanvas::Place(const Rect& r) const {
  char text[64];
  std::snprintf(text, sizeof text, "%d %d %d %d", r.left + state_.originX, r.top + state_.originY,
                r.right + state_.originX, r.bottom + state_.originY);
  return text;
}

void OpsCanvas::EndStage() {
  // What a device context holds once a stage's objects are deleted.
  State fresh;
  state_.font = fresh.font;
  state_.pen = fresh.pen;
  state_.brush = fresh.brush;
}

void OpsCanvas::FillRect(const Rect& r, Colour colour) { Line("fill " + Place(r) + " " + HexColour(colour)); }

void OpsCanvas::FrameRect(const Rect& r, Colour colour) { Line("frame " + Place(r) + " " + HexColour(colour)); }

void OpsCanvas::Rectangle(const Rect& r) {
  Line("rect " + Place(r) + " pen=" + PenText(state_.pen) + " brush=" + BrushText(state_.brush));
}

void OpsCanvas::RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight) {
  Line("roundrect " + Place(r) + " " + std::to_string(ellipseWidth) + " " + std::to_string(ellipseHeight) +
       " pen=" + PenText(state_.pen) + " brush=" + BrushText(state_.brush));
}

std::vector<std::string> OpsCanvas::BreakLines(const std::string& text, int32_t charWidth, int32_t width,
                                               uint32_t format) {
  if (format & kDtSingleLine) return {text};
  std::vector<std::string> lines;
  size_t start = 0;
  for (;;) {
    size_t end = text.find('\n', start);
    std::string paragraph = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
    if (!paragraph.empty() && paragraph.back() == '\r') paragraph.pop_back();
    if (!(format & kDtWordBreak)) {
      lines.push_back(paragraph);
    } else {
      // Fill each line with whole words; a word wider than the line stands alone.
      std::string line;
      size_t pos = 0;
      while (pos <= paragraph.size()) {
        size_t space = paragraph.find(' ', pos);
        std::string word = paragraph.substr(pos, space == std::string::npos ? std::string::npos : space - pos);
        std::string candidate = line.empty() ? word : line + " " + word;
        if (!line.empty() && static_cast<int64_t>(candidate.size()) * charWidth > width) {
          lines.push_back(line);
          line = word;
        } else {
          line = candidate;
        }
        if (space == std::string::npos) break;
        pos = space + 1;
      }
      lines.push_back(line);
    }
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return lines;
}

int32_t OpsCanvas::DrawText(const std::string& text, Rect* r, uint32_t format) {
  const int32_t lineHeight = state_.font.height > 0 ? state_.font.height : kDefaultFontHeight;
  const int32_t charWidth = lineHeight / 2;
  std::vector<std::string> lines = BreakLines(text, charWidth, Width(*r), format);
  const int32_t height = static_cast<int32_t>(lines.size()) * lineHeight;
  if (format & kDtCalcRect) {
    size_t longest = 0;
    for (const std::string& line : lines) longest = std::max(longest, line.size());
    const int32_t textWidth = static_cast<int32_t>(longest) * charWidth;
    r->right = r->left + (lines.size() == 1 ? textWidth : std::max(Width(*r), textWidth));
    r->bottom = r->top + height;
    return height;
  }
  const FontSpec& f = state_.font;
  char head[160];
  std::snprintf(head, sizeof head, "text %s flags=%u color=%s font=%d,%d,%d,", Place(*r).c_str(), format,
                HexColour(state_.textColour).c_str(), f.height, f.weight, f.italic);
  out_ += head;
  out_ += Quoted(f.face);
  out_ += ' ';
  out_ += Quoted(text);
  out_ += '\n';
  return height;
}

void OpsCanvas::DrawPicture(BlockHandle, int32_t width, int32_t height, bool) {
  Line("picture " + Place({0, 0, width, height}));
}

void OpsCanvas::RestoreState() {
  if (saved_.empty()) return;
  state_ = saved_.back();
  saved_.pop_back();
}

void OpsCanvas::Clip(const Rect& r) {
  Line("clip " + Place(r));
  state_.clipped = true;
  state_.clip = Offset(r, state_.originX, state_.originY);
}

void OpsCanvas::Unclip() {
  Line("unclip");
  state_.clipped = false;
}

bool OpsCanvas::VisibleBox(Rect* box) {
  if (!state_.clipped) return false;
  *box = Offset(state_.clip, -state_.originX, -state_.originY);
  return true;
}
