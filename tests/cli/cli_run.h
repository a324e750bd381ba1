// quernal-cli run as a user runs it: a process with arguments, its output
// and its exit code.
#pragma once
#include <cairo.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "calendar/calendar_file.h"
#include "unit/test_support.h"

// Runs a shell command; its exit code (-1 when a signal ended it), with what
// it printed in *out.
inline int ReadCommand(const std::string& command, std::string* out) {
  std::FILE* p = popen(command.c_str(), "r");
  char buffer[4096];
  for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, p)) > 0;) out->append(buffer, n);
  const int status = pclose(p);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
// The same with stdout and stderr together.
inline int RunCommand(const std::string& command, std::string* out = nullptr) {
  std::string text;
  const int status = ReadCommand(command + " 2>&1", &text);
  if (out) *out = text;
  return status;
}

// A PNG read once, its pixels as 0xRRGGBB.
class Png {
 public:
  explicit Png(const std::string& path) : s_(cairo_image_surface_create_from_png(path.c_str())) {
    EXPECT_EQ(cairo_surface_status(s_), CAIRO_STATUS_SUCCESS) << path;
  }
  ~Png() { cairo_surface_destroy(s_); }
  int width() const { return cairo_image_surface_get_width(s_); }
  int height() const { return cairo_image_surface_get_height(s_); }
  uint32_t operator()(int x, int y) const {
    if (x < 0 || y < 0 || x >= width() || y >= height()) return 0;
    const uint8_t* row = cairo_image_surface_get_data(s_) + y * cairo_image_surface_get_stride(s_);
    return reinterpret_cast<const uint32_t*>(row)[x] & 0xFFFFFF;
  }

 private:
  cairo_surface_t* s_;
};

struct CliRun {
  int status;
  std::string out;
  std::string err;
};

class CliTest : public QuernalTest {
 protected:
  // `prefix` runs in the same shell first (a resource limit, say).
  CliRun Cli(const std::string& args, const std::string& prefix = "") {
    return Shell(prefix + std::string(QUERNAL_CLI) + " " + args);
  }
  CliRun Shell(const std::string& command) {
    const std::string errPath = dir_.File("stderr.txt");
    CliRun run{};
    run.status = ReadCommand(command + " 2>'" + errPath + "'", &run.out);
    run.err = ReadFile(errPath);
    return run;
  }
  // A calendar of `year` saved as `name` in the test's folder, with a
  // picture of `width` x 20 in `month` that `edit` may change further.
  std::string SavedCalendar(const std::string& name, int year, int month, int width,
                            void (*edit)(MonthPage*) = nullptr) {
    CalendarDocument doc = CreateCalendar(year, month);
    MonthPage page;
    GetMonthPage(doc, month, &page);
    page.Picture = MakePatternDib(width, 20, 8, 1);
    if (edit) edit(&page);
    PutMonthPage(doc, month, &page);
    const std::string path = dir_.File(name);
    SilentProgress progress;
    EXPECT_EQ(SaveCalendar(&progress, path.c_str(), doc), 1);
    FreeCalendar(doc);
    return path;
  }
  static std::string Q(const std::string& path) { return "'" + path + "'"; }
  static bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
  static int Count(const std::string& text, const std::string& part) {
    int n = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++n;
    return n;
  }
};
