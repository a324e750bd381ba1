#include "cli/commands.h"

#include <cstring>
#include <string>

#include "pictures/picture_import.h"

namespace {

const CommandOption kAppDir{"--app-dir", "DIR", "the program's folder, where events files (NAME.CDF) are read; \".\" when not given"};
const CommandOption kLocale{"--locale", "NAME",
                         "day and month names from the system's locale NAME (de_DE, fr_FR.UTF-8, ...) instead of the "
                         "settings; refused when a name cannot be written in Windows-1252"};
const CommandOption kConfig{"--config", "DIR",
                         "read the settings file QUERNL.INI of the folder DIR first: the design of a new calendar, and "
                         "the day and month names, which are settings of the program rather than of a calendar"};

// The folder option's help names the extensions the import reads.
const char* PictureDirHelp() {
  static const std::string help = "the first twelve image files of DIR (by their extensions: " +
                                  PictureExtensionList() + ") in name order, January first; every one must be readable";
  return help.c_str();
}

// The new command's paragraph names the formats the import reads.
const char* NewPurpose() {
  static const std::string purpose =
      "Makes a new calendar as the program's New command does, from the settings, and saves it. Pictures are read "
      "by their content (" + PictureFormatList() + ") and imported as the page "
      "editor's \"Select...\" imports them: turned upright by their EXIF orientation, converted from their colour "
      "profile to sRGB, transparent parts laid over the page's background, reduced to 4000 pixels on the longer "
      "side; a palette picture is warned about, a picture that cannot be read stops the command before anything "
      "is written.";
  return purpose.c_str();
}

const CommandOption kFillBox{"--fill-box", nullptr,
                           "crop each picture to the shape of the box its page shows it in on the paper, so that it "
                           "fills the box instead of showing the page's background beside it; the largest such part "
                           "of the picture is kept"};
const CommandOption kFocus{"--focus", "X,Y",
                           "with --fill-box: the point of the picture the kept part is centred on, as far as the "
                           "picture allows, in percent of its width and height; 50,50 (the middle) when not given"};
const CommandOption kFillPaper{"--paper", "a4|letter|a3", "with --fill-box: the paper the box is laid out on; A4 when not given"};

const CommandOption kFullSize{"--full-size", nullptr,
                           "keep each picture at the file's size instead of reducing its longer side to 4000 pixels"};

const std::vector<Command> kCommands = {
    {"new", "[--year Y] [--month M] [--config DIR] [--locale NAME] [--pictures F1 ... F12 | --picture-dir DIR\n"
            "    [--skip-unreadable]] [--cover-picture F] [--title TEXT] [--full-size]\n"
            "    [--fill-box [--focus X,Y] [--paper a4|letter|a3]] -o FILE.CLN",
     NewPurpose(),
     {{"--year", "Y", "the calendar's year, 1583 to 2583; this year when not given"},
      {"--month", "M", "the month (1 to 12) the calendar opens on; this month when not given"},
      kConfig,
      kLocale,
      {"--pictures", "F...", "up to twelve image files for the months, January first"},
      {"--picture-dir", "DIR", PictureDirHelp()},
      {"--skip-unreadable", nullptr, "with --picture-dir: leave out the files that cannot be read, naming them"},
      {"--cover-picture", "F", "an image file for the cover page, shown there"},
      kFullSize,
      kFillBox,
      kFocus,
      kFillPaper,
      {"--title", "TEXT", "the cover's title (UTF-8, at most 260 characters in Windows-1252)"},
      kAppDir,
      {"-o", "FILE.CLN", "the calendar file to write"}},
     NewCommand},
    {"info", "FILE.CLN [--paper a4|letter|a3] [--app-dir DIR]",
     "Prints every field of the calendar's records as JSON: the header, then the twelve month pages with their "
     "pictures' sizes and the events each page shows, then the resolution each picture prints at.",
     {{"--paper", "a4|letter|a3", "the paper the pictures' print resolution is given for; A4 when not given"}, kAppDir},
     InfoCommand},
    {"summary", "FILE.CLN [--paper a4|letter|a3] [--app-dir DIR]",
     "Prints a few lines about the calendar: its year, the page it opens on, its pictures with the resolution "
     "each prints at (below 150 ppi a picture may print blurry), and its events.",
     {{"--paper", "a4|letter|a3", "the paper the pictures' print resolution is given for; A4 when not given"}, kAppDir},
     SummaryCommand},
    {"resave", "IN.CLN -o OUT.CLN [--level 1-9] [--app-dir DIR]",
     "Reads a calendar and saves it again, dropping damaged pictures; OUT may be IN.",
     {{"-o", "OUT.CLN", "the calendar file to write"},
      {"--level", "1-9", "the compression level of the pictures (the setting ImageCompression when not given)"},
      kAppDir},
     ResaveCommand},
    {"set", "FILE.CLN [--page N | --months | --year-page | --cover] FIELD=VALUE ... [--picture F | --no-picture]\n"
            "    [--fill-box [--focus X,Y] [--paper a4|letter|a3]]",
     "Changes fields of one page, of all twelve month pages, of the year page or of the cover, named as `info` "
     "names them, and saves the calendar in place. Colours are #RRGGBB or r,g,b; flags 0 or 1; texts UTF-8. "
     "Nothing is written when a field, a value or the page is wrong.",
     {{"--page", "N", "the month page N, 0 (January) to 11; the page the calendar opens on when no page is named"},
      {"--months", nullptr, "all twelve month pages"},
      {"--year-page", nullptr, "the year-at-a-glance page (the header's Yag... fields)"},
      {"--cover", nullptr, "the cover page (the header's Cover... fields)"},
      {"--picture", "F", "the image file that becomes the page's picture, imported as `new` imports pictures"},
      {"--no-picture", nullptr, "the page loses its picture"},
      kFullSize,
      kFillBox,
      kFocus,
      kFillPaper,
      kAppDir},
     SetCommand},
    {"settings", "[--ini FILE] [--locale NAME]",
     "Prints the settings file the program would write: its defaults, or those read from FILE.",
     {{"--ini", "FILE", "a settings file to read first"}, kLocale},
     SettingsCommand},
    {"render",
     "(FILE.CLN | --new [--year Y]) [--config DIR] [--locale NAME] [--page N | --all | --booklet]\n"
     "    [--halves both|upper|lower] [--screen] [--width W --height H | --paper a4|letter|a3] [--dpi D]\n"
     "    [--bleed MM] [--crop-marks] [--jpeg-quality Q | --lossless] [--app-dir DIR] --format png|pdf|svg|ops -o OUT",
     "Draws pages of a calendar as the program prints them: PNG, SVG and ops (a line per drawing call) write a "
     "file per page (OUT-01.png, ...), PDF writes one file.",
     {{"--new", nullptr, "draw a new calendar made from the settings instead of a file"},
      {"--year", "Y", "with --new: the calendar's year"},
      kConfig,
      kLocale,
      {"--page", "N", "the page: 0 to 11 for a month, 12 the year page, 13 the cover; the page the calendar opens on "
                      "when no page is asked for"},
      {"--all", nullptr, "the cover, the year page and the twelve months"},
      {"--booklet", nullptr, "the fourteen sides of the folded double-sided booklet: the fronts of the seven sheets, "
                             "then their backs"},
      {"--halves", "both|upper|lower", "the halves of the page to draw"},
      {"--screen", nullptr, "as the screen shows the page, with a pixel of window round it"},
      {"--width", "W", "the page's width in pixels (with --height)"},
      {"--height", "H", "the page's height in pixels (with --width)"},
      {"--paper", "a4|letter|a3", "the paper; a4 when not given"},
      {"--dpi", "D", "pixels per inch, 36 to 2400; 300 when not given"},
      {"--bleed", "MM", "PDF only: the page grows by MM millimetres on each side, the page's background reaching "
                        "the new edge; the PDF's TrimBox and BleedBox are set"},
      {"--crop-marks", nullptr, "PDF only: marks where the paper is cut, outside the trimmed page"},
      {"--jpeg-quality", "Q", "PDF only: the pictures are embedded as JPEGs of quality Q, 1 to 100; 92 when not given"},
      {"--lossless", nullptr, "PDF only: the pictures are embedded losslessly (Flate) instead, in larger files"},
      kAppDir,
      {"--format", "png|pdf|svg|ops", "the output's format"},
      {"-o", "OUT", "the file to write"}},
     RenderCommand},
    {"events", "import FILE.ics --year Y -o NAME.CDF [--locale NAME] | list NAME.CDF [--year Y] [--locale NAME]",
     "import: writes the events of year Y in an iCalendar file (holidays, birthdays, school terms) as an events "
     "file the program reads, in date order. list: prints what the program shows on each day of the year from an "
     "events file.",
     {{"--year", "Y", "the year whose events are written or listed; this year when not given to list"},
      {"-o", "NAME.CDF", "the events file to write; put it in the program's folder and name the list NAME on the "
                         "pages"},
      kLocale},
     EventsCommand},
};

void PrintWrapped(std::FILE* out, const char* text, int indent) {
  const int width = 78;
  int column = indent;
  std::fprintf(out, "%*s", indent, "");
  while (*text) {
    size_t word = std::strcspn(text, " ");
    if (column > indent && column + 1 + static_cast<int>(word) > width) {
      std::fprintf(out, "\n%*s", indent, "");
      column = indent;
    } else if (column > indent) {
      std::fputc(' ', out);
      ++column;
    }
    std::fwrite(text, 1, word, out);
    column += static_cast<int>(word);
    text += word;
    while (*text == ' ') ++text;
  }
  std::fputc('\n', out);
}

}  // namespace

const std::vector<Command>& Commands() { return kCommands; }

const Command* FindCommand(const std::string& name) {
  for (const Command& command : kCommands)
    if (name == command.name) return &command;
  return nullptr;
}

void PrintUsage(std::FILE* out) {
  std::fputs("usage:\n", out);
  for (const Command& command : kCommands) std::fprintf(out, "  quernal-cli %s %s\n", command.name, command.synopsis);
  std::fputs("  quernal-cli help [COMMAND]\n  quernal-cli --version\n", out);
}

void PrintCommandHelp(std::FILE* out, const Command& command) {
  std::fprintf(out, "usage: quernal-cli %s %s\n\n", command.name, command.synopsis);
  PrintWrapped(out, command.purpose, 0);
  if (!command.options.empty()) std::fputs("\noptions:\n", out);
  for (const CommandOption& option : command.options) {
    std::fprintf(out, "  %s%s%s\n", option.name, option.value ? " " : "", option.value ? option.value : "");
    PrintWrapped(out, option.help, 6);
  }
}

namespace {
// Text for roff: a backslash doubled, a leading dot or quote kept from being a request.
std::string Roff(const char* text) {
  std::string out;
  for (const char* p = text; *p; ++p) {
    if (*p == '\n') {
      out += ' ';  // a synopsis's second line joins its first
      while (p[1] == ' ') ++p;
    } else if (*p == '\\') out += "\\e";
    else if (*p == '-') out += "\\-";
    else out += *p;
  }
  if (!out.empty() && (out[0] == '.' || out[0] == '\'')) out.insert(0, "\\&");
  return out;
}
}  // namespace

void PrintManPage(std::FILE* out) {
  std::fprintf(out, ".TH QUERNAL-CLI 1 \"\" \"quernal-cli %s\" \"User Commands\"\n", QUERNAL_VERSION);
  std::fputs(".SH NAME\nquernal-cli \\- make, change, inspect and print Quernal calendar files from the command line\n"
             ".SH SYNOPSIS\n", out);
  for (const Command& command : kCommands)
    std::fprintf(out, ".B quernal-cli %s\n%s\n.br\n", command.name, Roff(command.synopsis).c_str());
  std::fputs(".B quernal-cli help\n[COMMAND]\n.br\n.B quernal-cli \\-\\-version\n.SH DESCRIPTION\n"
             "The command-line companion of the Quernal calendar designer, over the same calendar files, settings, "
             "pictures and drawing as the program itself. Every command exits 0 when it succeeded, 1 when a file "
             "could not be read or written, and 2 when its arguments were wrong; a file is never left half "
             "written.\n.SH COMMANDS\n", out);
  for (const Command& command : kCommands) {
    std::fprintf(out, ".SS %s\n%s\n", command.name, Roff(command.purpose).c_str());
    for (const CommandOption& option : command.options)
      std::fprintf(out, ".TP\n.B %s%s%s\n%s\n", Roff(option.name).c_str(), option.value ? " " : "",
                   option.value ? Roff(option.value).c_str() : "", Roff(option.help).c_str());
  }
  std::fputs(".SH ENVIRONMENT\n.TP\n.B QUERNAL_PROGRESS_AFTER\nseconds before a long command shows its progress "
             "line on a terminal (1 when not set).\n", out);
}
