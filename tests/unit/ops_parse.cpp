#include "ops_parse.h"

#include <sstream>

#include "render/ops_canvas.h"
#include "render/page_renderer.h"

namespace {
// Reads a quoted, backslash-escaped string starting at line[pos] == '"'.
std::string Unquote(const std::string& line, size_t* pos) {
  std::string out;
  size_t i = *pos + 1;
  for (; i < line.size() && line[i] != '"'; ++i) {
    char c = line[i];
    if (c == '\\' && i + 1 < line.size()) {
      c = line[++i];
      c = c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    out += c;
  }
  *pos = i + 1;
  return out;
}
}  // namespace

std::vector<Op> ParseOps(const std::string& ops) {
  std::vector<Op> out;
  std::istringstream lines(ops);
  std::string line;
  while (std::getline(lines, line)) {
    Op op;
    op.line = line;
    size_t fontAt = line.find(" font=");
    std::istringstream in(line.substr(0, fontAt));
    in >> op.kind;
    if (op.kind != "unclip") in >> op.r.left >> op.r.top >> op.r.right >> op.r.bottom;
    std::string word;
    if (op.kind == "fill" || op.kind == "frame") in >> op.colour;
    if (op.kind == "roundrect") in >> op.ellipse >> word;
    while (in >> word) {
      if (word.rfind("pen=", 0) == 0) op.pen = word.substr(4);
      else if (word.rfind("brush=", 0) == 0) op.brush = word.substr(6);
      else if (word.rfind("flags=", 0) == 0) op.flags = static_cast<int>(std::stoul(word.substr(6)));
      else if (word.rfind("color=", 0) == 0) op.colour = word.substr(6);
    }
    if (fontAt != std::string::npos) {
      size_t quote = line.find('"', fontAt);
      std::string face = Unquote(line, &quote);
      op.font = line.substr(fontAt + 6, line.find('"', fontAt) - fontAt - 6) + "\"" + face + "\"";
      size_t text = line.find('"', quote);
      op.text = Unquote(line, &text);
    }
    out.push_back(op);
  }
  return out;
}

std::vector<Op> RenderOps(CalendarDocument document, int pageIndex, const Rect& page, bool printing, bool upper,
                          bool lower) {
  OpsCanvas canvas;
  DrawCalendarPage(canvas, page, document, pageIndex, printing, upper, lower);
  return ParseOps(canvas.ops());
}

std::vector<Op> OfKind(const std::vector<Op>& ops, const std::string& kind) {
  std::vector<Op> out;
  for (const Op& op : ops)
    if (op.kind == kind) out.push_back(op);
  return out;
}

std::vector<Op> Texts(const std::vector<Op>& ops, const std::string& colour) {
  std::vector<Op> out;
  for (const Op& op : ops)
    if (op.kind == "text" && op.colour == colour) out.push_back(op);
  return out;
}

std::vector<std::string> Lines(const std::vector<Op>& ops) {
  std::vector<std::string> lines;
  for (const Op& op : ops) lines.push_back(op.line);
  return lines;
}
