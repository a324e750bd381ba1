// What the commands of quernal-cli share: their arguments, loading and saving
// without asking anybody, and making a new calendar from the options.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "calendar/calendar_model.h"

struct Command;

struct Arguments {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;  // flags map to ""
  std::map<std::string, std::vector<std::string>> lists;  // options taking several values
  bool Has(const std::string& option) const { return options.count(option) != 0 || lists.count(option) != 0; }
};

// Prints the problem (or, without one, the usage) on stderr; returns the
// exit code 2.
int Usage(const char* problem);
struct Paper;
// The paper of --paper (A4 when it is not given), or null after saying
// what --paper takes.
const Paper* PaperOption(const Arguments& args);

// --fill-box [--focus X,Y] [--paper P]: each picture cropped to the shape of
// the box its page shows it in on that paper, so that it fills the box
// instead of being letterboxed, the frame as large as the picture allows
// and centred on the point X,Y (percent of the picture; 50,50 when not
// given).
struct FillBox {
  bool on = false;
  const Paper* paper = nullptr;
  int focusX = 50, focusY = 50;
};
// An exit code for a wrong option, or -1.
int FillBoxOption(const Arguments& args, FillBox* out);
// Crops the pictures of `pages` (0..11 the months, 13 the cover; others have
// none); false when memory runs out.
bool FillBoxes(CalendarDocument document, const std::vector<int>& pages, const FillBox& fill);
// Splits argv[2..] into positional arguments and the command's options: a
// flag, an option with one value, or a list option taking every value up to
// the next option.
bool ParseArguments(int argc, char** argv, const Command& command, Arguments* out, std::string* problem);
bool ParseInt(const std::string& text, long low, long high, int* value);

// A line on stderr saying how far a long command has come ("loading
// pictures 3/12"), shown only on a terminal and only once the command has
// run for a second; the line is cleared when the object goes.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;
  void Show(const char* what, int done, int total);

 private:
  bool terminal_;
  double start_;
  bool shown_ = false;
};

// The program's folder, where events files are found: --app-dir or ".".
void SetApplicationPath(const Arguments& args);
// Loads a calendar, dropping damaged pictures with a line on stderr; 0 (and the
// program's message on stderr) when the file cannot be read.
// `skipped` (when given) receives the number of damaged pictures dropped.
CalendarDocument Load(const std::string& path, int* skipped = nullptr);
// Saves; 1 (and the program's message on stderr) on failure, else 0.
int Save(const std::string& path, CalendarDocument document);
// A picture file imported as the page editor's "Select..." imports it, but
// read by its content in any format this build reads: transparent parts
// laid over `background`, reduced to 4000 pixels unless --full-size was
// given. 0 after a line naming the reason on stderr (`quiet`: no line) when
// it cannot be read; a palette picture is warned about on stderr.
BlockHandle ReadPictureOption(const std::string& path, Colour background, const Arguments& args, bool quiet = false);
// A calendar from --year, --month and --config as `new` makes it; 0 with an
// exit code in *status when the options are wrong or memory runs out.
CalendarDocument NewCalendar(const Arguments& args, int* status);
