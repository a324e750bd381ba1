// quernal-cli new: a calendar from the settings, with pictures and a title.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "base/text.h"
#include "calendar/calendar_file.h"
#include "calendar/calendar_model.h"
#include "cli/calendar_lock.h"
#include "cli/commands.h"
#include "pictures/picture_import.h"

namespace {

// The image files of `folder` by name: regular files with an extension of a
// format the import reads, hidden ones left out.
bool ImageFilesIn(const std::string& folder, std::vector<std::string>* paths) {
  DIR* dir = opendir(folder.c_str());
  if (!dir) return false;
  std::vector<std::string> names;
  while (const dirent* entry = readdir(dir)) {
    const std::string name = entry->d_name;
    struct stat info;
    if (name[0] == '.' || !HasPictureExtension(name.c_str())) continue;
    if (stat(JoinPath(folder, name).c_str(), &info) == 0 && S_ISREG(info.st_mode)) names.push_back(name);
  }
  closedir(dir);
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) paths->push_back(JoinPath(folder, name));
  return true;
}

// The month pictures asked for, January first; an exit code, or -1.
int MonthPicturePaths(const Arguments& args, std::vector<std::string>* paths) {
  if (args.Has("--pictures") && args.Has("--picture-dir")) return Usage("--pictures and --picture-dir exclude each other");
  if (args.Has("--pictures")) {
    *paths = args.lists.at("--pictures");
    if (paths->size() > 12) return Usage("--pictures takes at most twelve files, one for each month");
  } else if (args.Has("--picture-dir")) {
    const std::string& folder = args.options.at("--picture-dir");
    if (!ImageFilesIn(folder, paths)) {
      std::fprintf(stderr, "quernal-cli: %s: the folder cannot be read\n", folder.c_str());
      return 1;
    }
    if (paths->empty()) {
      std::fprintf(stderr, "quernal-cli: %s: no image files (%s) in the folder\n", folder.c_str(),
                   PictureExtensionList().c_str());
      return 1;
    }
    // Without --skip-unreadable the first twelve are the months', readable or not.
    if (!args.Has("--skip-unreadable") && paths->size() > 12) paths->resize(12);
  } else if (args.Has("--skip-unreadable")) {
    return Usage("--skip-unreadable goes with --picture-dir");
  }
  return -1;
}

// Reads every picture before the calendar gets any, so a failure writes
// nothing: every file that cannot be read is named before the command
// stops. With --skip-unreadable such files are named and left out, and the
// next files take their months. Each picture is laid over the background of
// the page it goes to; the cover's comes last.
bool LoadPictures(const std::vector<std::string>& paths, size_t months, CalendarDocument document,
                  const Arguments& args, std::vector<BlockHandle>* pictures) {
  const bool skip = args.Has("--skip-unreadable");
  ProgressLine progress;
  int failed = 0;
  for (size_t i = 0; i < paths.size(); ++i) {
    const bool cover = i >= months;
    if (!cover && pictures->size() >= 12) continue;
    MonthPage page;
    CalendarHeader header;
    GetHeader(document, &header);
    const Colour background = cover || !GetMonthPage(document, static_cast<int>(pictures->size()), &page)
                                  ? header.CoverBackgroundColour
                                  : page.PageBackgroundColour;
    BlockHandle picture = ReadPictureOption(paths[i], background, args);
    if (picture) {
      pictures->push_back(picture);
    } else if (skip && !cover) {
      std::fprintf(stderr, "quernal-cli: %s: skipped\n", paths[i].c_str());
    } else {
      ++failed;
    }
    progress.Show("reading pictures", static_cast<int>(i + 1), static_cast<int>(paths.size()));
  }
  if (!failed) return true;
  for (BlockHandle picture : *pictures) GlobalBlockFree(picture);
  pictures->clear();
  return false;
}

// The pictures become the months' (and the cover's) as "Select..." makes
// them: shown.
void GivePictures(CalendarDocument document, const std::vector<BlockHandle>& months, BlockHandle cover,
                  const std::string& title) {
  for (size_t month = 0; month < months.size(); ++month) {
    MonthPage page;
    GetMonthPage(document, static_cast<int>(month), &page);
    page.Picture = months[month];
    page.PictureShowPicture = 1;
    PutMonthPage(document, static_cast<int>(month), &page);
  }
  CalendarHeader header;
  GetHeader(document, &header);
  if (cover) {
    header.CoverPicture = cover;
    header.CoverPictureShowPicture = 1;
  }
  if (!title.empty()) CopyText(header.CoverTitle, sizeof header.CoverTitle, title.c_str());
  PutHeader(document, &header);
}

}  // namespace

int NewCommand(const Arguments& args) {
  if (!args.positional.empty() || !args.Has("-o")) return Usage("new needs -o FILE.CLN and no other file");
  std::vector<std::string> paths;
  int status = MonthPicturePaths(args, &paths);
  if (status >= 0) return status;
  std::string title;
  if (args.Has("--title")) {
    if (!Utf8ToCp1252(args.options.at("--title"), &title))
      return Usage(("--title has a character Windows-1252 cannot hold (shown as ?): " + Cp1252ToUtf8(title)).c_str());
    if (title.size() > 260) return Usage("--title takes at most 260 characters");
  }
  FillBox fill;
  if ((status = FillBoxOption(args, &fill)) >= 0) return status;
  const size_t candidates = paths.size();
  const bool hasCover = args.Has("--cover-picture");
  if (hasCover) paths.push_back(args.options.at("--cover-picture"));
  CalendarDocument document = NewCalendar(args, &status);
  if (!document) return status;
  std::vector<BlockHandle> pictures;
  if (!LoadPictures(paths, candidates, document, args, &pictures)) {
    FreeCalendar(document);
    return 1;
  }
  const BlockHandle cover = hasCover ? pictures.back() : 0;
  if (hasCover) pictures.pop_back();
  GivePictures(document, pictures, cover, title);
  if (!FillBoxes(document, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, kCoverPageIndex}, fill)) {
    std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
    FreeCalendar(document);
    return 1;
  }
  const CalendarLock lock(args.options.at("-o"));
  const int result = lock.ok() ? Save(args.options.at("-o"), document) : 1;
  FreeCalendar(document);
  return result;
}
