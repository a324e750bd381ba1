#include "cli/cli_common.h"

#include "pictures/picture_crop.h"
#include "render/picture_box.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "cli/commands.h"
#include "cli/locale_names.h"
#include "config/settings.h"
#include "pictures/image_files.h"
#include "base/replace_file.h"
#include "pictures/page_picture.h"
#include "pictures/picture_import.h"
#include "pictures/picture_kind.h"
#include "config/settings_file.h"

namespace {

// Loading without anybody to ask: a damaged picture is dropped, as if the
// question had been answered Yes, and said on stderr. Running out of memory
// never asks; the load fails instead.
// On a terminal, a long load or save shows how far it has come.
class CliProgress : public FileProgress {
 public:
  CliProgress(const std::string& path, const char* what) : path_(path), what_(what) {}
  void Begin(const char*) override {}
  void Advance(int current, int total) override { line_.Show(what_, current, total); }
  void End() override {}
  bool AskYesNo(const char*) override {
    std::fprintf(stderr, "quernal-cli: %s: a damaged picture was skipped\n", path_.c_str());
    ++skipped;
    return true;
  }
  int skipped = 0;

 private:
  std::string path_;
  const char* what_;
  ProgressLine line_;
};

}  // namespace

int Usage(const char* problem) {
  if (!problem) {
    PrintUsage(stderr);
  } else {
    std::fprintf(stderr, "quernal-cli: %s\n", problem);
    std::fputs("(quernal-cli help COMMAND explains a command and its options)\n", stderr);
  }
  return 2;
}

bool ParseArguments(int argc, char** argv, const Command& command, Arguments* out, std::string* problem) {
  auto isOption = [](const std::string& arg) { return arg.size() >= 2 && arg[0] == '-'; };
  for (int i = 2; i < argc; ++i) {
    const std::string arg = argv[i];
    const CommandOption* known = nullptr;
    for (const CommandOption& option : command.options)
      if (arg == option.name) known = &option;
    if (!isOption(arg)) {
      out->positional.push_back(arg);
    } else if (!known) {
      *problem = "unknown option " + arg + " (quernal-cli help " + command.name + " lists them)";
      return false;
    } else if (!known->value) {
      out->options[arg] = "";
    } else if (i + 1 >= argc || (std::strstr(known->value, "...") && isOption(argv[i + 1]))) {
      *problem = arg + " needs a value";
      return false;
    } else if (std::strstr(known->value, "...")) {
      std::vector<std::string>& values = out->lists[arg];
      while (i + 1 < argc && !isOption(argv[i + 1])) values.push_back(argv[++i]);
    } else {
      out->options[arg] = argv[++i];
    }
  }
  return true;
}

bool ParseInt(const std::string& text, long low, long high, int* value) {
  errno = 0;
  char* end = nullptr;
  long v = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end || errno || v < low || v > high) return false;
  *value = static_cast<int>(v);
  return true;
}

void SetApplicationPath(const Arguments& args) {
  std::snprintf(Settings.ApplicationPath, sizeof Settings.ApplicationPath, "%s",
                args.Has("--app-dir") ? args.options.at("--app-dir").c_str() : ".");
}

CalendarDocument Load(const std::string& path, int* skipped) {
  // A FIFO or a device would keep the reader waiting, or reading, forever.
  struct stat info;
  if (stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
    std::fprintf(stderr, "quernal-cli: %s: %s (it is not a regular file)\n", path.c_str(), kLoadFailedMessage);
    return 0;
  }
  CliProgress progress(path, "reading the calendar");
  LoadFailure failure;
  CalendarDocument document = LoadCalendar(&progress, path.c_str(), &failure);
  if (skipped) *skipped = progress.skipped;
  if (!document)
    std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(),
                 failure == LoadFailure::kOutOfMemory ? kMemoryFailedMessage : kLoadFailedMessage);
  return document;
}

int Save(const std::string& path, CalendarDocument document) {
  uint64_t total = 0;
  if (!PicturesFitOneFile(document, &total)) {
    std::fprintf(stderr,
                 "quernal-cli: %s: the pictures are too large for one calendar file (%llu MB; each at most %u MB, all "
                 "together at most %u MB): nothing was written; leave out --full-size\n",
                 path.c_str(), static_cast<unsigned long long>(total >> 20), kMaxPictureBytes >> 20,
                 kMaxDocumentPictureBytes >> 20);
    return 1;
  }
  CliProgress progress(path, "saving the calendar");
  if (SaveCalendar(&progress, path.c_str(), document)) return 0;
  // The save's message, but for a folder that refuses the new file: no
  // room is not the problem then.
  const WriteProblem problem = LastWriteProblem();
  if (problem == WriteProblem::kFolderRefuses)
    std::fprintf(stderr, "quernal-cli: %s: %s; nothing was written\n", path.c_str(), WriteProblemText(problem));
  else if (problem == WriteProblem::kNotAFile || problem == WriteProblem::kWriteProtected)
    std::fprintf(stderr, "quernal-cli: %s: %s (it %s)\n", path.c_str(), kSaveFailedMessage, WriteProblemText(problem));
  else
    std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), kSaveFailedMessage);
  return 1;
}

namespace {

// A line on stderr for what went wrong and for the palette warning.
class CliPictureHost : public PagePictureHost {
 public:
  explicit CliPictureHost(bool quiet) : quiet_(quiet) {}
  void Failed(const char* path, const ImportedPicture& picture) override {
    // A damaged picture gets the program's own message after the reason.
    if (!quiet_)
      std::fprintf(stderr, "quernal-cli: %s: %s%s%s\n", path, ImportErrorText(picture).c_str(),
                   picture.error == ImportError::kDamaged ? ": " : "",
                   picture.error == ImportError::kDamaged ? kImageLoadFailedMessage : "");
  }
  void WarnAboutPalette(const char* path) override {
    std::fprintf(stderr, "quernal-cli: %s: warning: %s\n", path, kPaletteWarningMessage);
  }

 private:
  bool quiet_;
};

}  // namespace

BlockHandle ReadPictureOption(const std::string& path, Colour background, const Arguments& args, bool quiet) {
  ImportRequest request;
  request.background = background;
  request.longestSide = args.Has("--full-size") ? 0 : kImportLongestSide;
  request.formats = ImportFormats::kByContent;
  CliPictureHost host(quiet);
  return ReadPagePicture(path.c_str(), request, host);
}

CalendarDocument NewCalendar(const Arguments& args, int* status) {
  CalendarDate today = Today();
  int year = today.year, month = today.month;
  if (args.Has("--year") && !ParseInt(args.options.at("--year"), 1583, 2583, &year)) {
    *status = Usage("--year takes a year from 1583 to 2583");
    return 0;
  }
  if (args.Has("--month") && !ParseInt(args.options.at("--month"), 1, 12, &month)) {
    *status = Usage("--month takes a month from 1 to 12");
    return 0;
  }
  if (args.Has("--config")) {
    SetConfigFolder(args.options.at("--config").c_str());
    LoadSettings();
  }
  if ((*status = ApplyLocaleOption(args)) >= 0) return 0;
  // As at start-up, the program's folder is not taken from the settings file.
  SetApplicationPath(args);
  CalendarDocument document = CreateCalendar(year, month - 1);
  if (!document) {
    std::fprintf(stderr, "quernal-cli: There has been an error initializing the year.\n");
    *status = 1;
  }
  return document;
}

namespace {
double Seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
}  // namespace

ProgressLine::ProgressLine() : terminal_(isatty(STDERR_FILENO) == 1), start_(Seconds()) {
  // Tests see the line without waiting a second.
  if (const char* after = std::getenv("QUERNAL_PROGRESS_AFTER")) start_ -= 1.0 - std::atof(after);
}

ProgressLine::~ProgressLine() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void ProgressLine::Show(const char* what, int done, int total) {
  if (!terminal_ || Seconds() - start_ < 1.0) return;
  std::fprintf(stderr, "\r\033[K%s %d/%d", what, done, total);
  std::fflush(stderr);
  shown_ = true;
}

const Paper* PaperOption(const Arguments& args) {
  const Paper* paper = FindPaper(args.Has("--paper") ? args.options.at("--paper") : "a4");
  if (!paper) Usage("--paper takes a4, letter or a3");
  return paper;
}

int FillBoxOption(const Arguments& args, FillBox* out) {
  out->on = args.Has("--fill-box");
  if (!out->on) {
    if (args.Has("--focus")) return Usage("--focus goes with --fill-box");
    return -1;
  }
  if (!(out->paper = PaperOption(args))) return 2;
  if (!args.Has("--focus")) return -1;
  const std::string& focus = args.options.at("--focus");
  const size_t comma = focus.find(',');
  if (comma == std::string::npos || !ParseInt(focus.substr(0, comma), 0, 100, &out->focusX) ||
      !ParseInt(focus.substr(comma + 1), 0, 100, &out->focusY))
    return Usage("--focus takes X,Y in percent of the picture, 0 to 100 each, as 50,30");
  return -1;
}

namespace {

// The picture in `slot` cropped to `box`'s shape; false when memory runs out.
bool FillOne(BlockHandle* slot, const Rect& box, const FillBox& fill) {
  int32_t width, height;
  if (!*slot || !DibSize(*slot, &width, &height)) return true;
  const CropShape shape{width, height, box.right - box.left, box.bottom - box.top};
  const BlockHandle cropped = DibCropped(*slot, FrameAtFocus(shape, fill.focusX, fill.focusY));
  if (!cropped) return false;
  GlobalBlockFree(*slot);
  *slot = cropped;
  return true;
}

}  // namespace

bool FillBoxes(CalendarDocument document, const std::vector<int>& pages, const FillBox& fill) {
  if (!fill.on) return true;
  const Rect paper = PaperPage(*fill.paper, kLayoutDpi);
  for (int page : pages) {
    CalendarHeader header;
    MonthPage month;
    if (page == kCoverPageIndex) {
      if (!GetHeader(document, &header) || !FillOne(&header.CoverPicture, CoverPictureFitBox(paper, header), fill) ||
          !PutHeader(document, &header))
        return false;
    } else if (page >= 0 && page < 12) {
      if (!GetMonthPage(document, page, &month) || !FillOne(&month.Picture, MonthPictureFitBox(paper, month), fill) ||
          !PutMonthPage(document, page, &month))
        return false;
    }
  }
  return true;
}
