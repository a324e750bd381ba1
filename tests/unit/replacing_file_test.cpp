// The writers of the program's files (calendars, events lists, settings)
// replace their file in one step: whatever stands in the way and whatever
// fails, the previous file survives and nothing is left behind.
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include "base/text.h"
#include "calendar/calendar_file.h"
#include "calendar/event_list.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "test_support.h"

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#endif

namespace fs = std::filesystem;

namespace {

// One writer: its file in the program's folder, writing version v of it
// (v is the calendar's year, the events' day, the settings' date font size),
// and the text by which version v is recognised.
struct Writer {
  const char* file;
  bool (*write)(int v);
  std::string (*mark)(int v);
};
const Writer kWriters[] = {
    {"Year.CLN",
     [](int v) {
       CalendarDocument doc = CreateCalendar(2000 + v, 0);
       SilentProgress progress;
       const int ok = SaveCalendar(&progress, JoinPath(Settings.ApplicationPath, "Year.CLN").c_str(), doc);
       FreeCalendar(doc);
       return ok == 1;
     },
     [](int v) { return std::string("\xD0\x07\0\0", 4).replace(0, 1, 1, static_cast<char>(0xD0 + v)); }},
    {"General.CDF",  // a hundred lines: more than the disk takes in the failing case
     [](int v) { return WriteEventList("General", std::vector<EventEntry>(100, EventEntry{0, v, "Event text"})); },
     [](int v) { return "Jan0" + std::to_string(v) + " Event text"; }},
#ifndef _WIN32
    {"QUERNL.INI",
     [](int v) {
       SetConfigFolder(Settings.ApplicationPath);
       Settings.DateFontSize = static_cast<uint32_t>(v);
       SaveSettings({});
       return true;
     },
     [](int v) { return "\nDateFontSize = " + std::to_string(v) + "\n"; }},
#endif
};

class ReplacingFileTest : public QuernalTest {
 protected:
  bool Holds(const Writer& w, int v) { return ReadFile(dir_.File(w.file)).find(w.mark(v)) != std::string::npos; }
  // What the folder holds (the test's own by default).
  std::set<std::string> Names(const std::string& folder = "") {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder.empty() ? dir_.path() : folder))
      names.insert(entry.path().filename().string());
    return names;
  }
};

}  // namespace

TEST_F(ReplacingFileTest, StaleLeftoversDoNotBlockAndNothingIsLeftBehind) {
  for (const Writer& w : kWriters) {
    SCOPED_TRACE(w.file);
    // What a killed save left under the names temporary files used to have.
    const std::string target = dir_.File(w.file);
    WriteFile(target + ".new", "stale");
    fs::create_directory(target + ".saving");
    std::set<std::string> expected = Names();
    ASSERT_TRUE(w.write(1) && w.write(2));
    EXPECT_TRUE(Holds(w, 2));
    expected.insert(w.file);
    if (w.file == std::string("General.CDF")) expected.insert("General.BAK");
    EXPECT_EQ(Names(), expected);
  }
}

#ifndef _WIN32
TEST_F(ReplacingFileTest, ALinkStaysALinkAndAFailedWriteKeepsTheFile) {
  TempDir elsewhere;
  for (const Writer& w : kWriters) {
    SCOPED_TRACE(w.file);
    const std::string target = dir_.File(w.file), real = elsewhere.File(w.file);
    ASSERT_TRUE(w.write(3));
    fs::rename(target, real);
    fs::create_symlink(real, target);
    chmod(real.c_str(), 0600);
    ASSERT_TRUE(w.write(4));
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_TRUE(Holds(w, 4));
    struct stat st;
    ASSERT_EQ(stat(real.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0600u);

    // The disk fills up after a thousand bytes.
    const std::set<std::string> before = Names(), beforeElsewhere = Names(elsewhere.path());
    struct rlimit old, small;
    getrlimit(RLIMIT_FSIZE, &old);
    small = old;
    small.rlim_cur = 1000;
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    w.write(5);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_TRUE(Holds(w, 4));
    EXPECT_EQ(Names(), before);
    EXPECT_EQ(Names(elsewhere.path()), beforeElsewhere);
  }
}
#endif
