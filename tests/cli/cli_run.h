// quernal-cli run as a user runs it: a process with arguments, its output
// and its exit code.
#pragma once
#include <cairo.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "unit/test_support.h"

// Runs a shell command; its exit code, with stdout and stderr together in *out.
inline int RunCommand(const std::string& command, std::string* out = nullptr) {
  std::FILE* p = popen((command + " 2>&1").c_str(), "r");
  char buffer[4096];
  size_t n;
  std::string text;
  while ((n = std::fread(buffer, 1, sizeof buffer, p)) > 0) text.append(buffer, n);
  const int status = pclose(p);
  if (out) *out = text;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
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
    std::FILE* p = popen((command + " 2>'" + errPath + "'").c_str(), "r");
    char buffer[4096];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, p)) > 0) run.out.append(buffer, n);
    const int status = pclose(p);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = ReadFile(errPath);
    return run;
  }
  static std::string Q(const std::string& path) { return "'" + path + "'"; }
  static bool Has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
};
