// quernal-cli run as a user runs it: a process with arguments, its output
// and its exit code.
#pragma once
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
