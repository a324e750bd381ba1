// The three writers of the program's files (calendars, events lists, the
// settings) replace their file in one step: whatever stands in the way and
// whatever fails, the previous file survives and nothing is left behind.
#include <cstdio>
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

struct Writer {
  const char* what;
  const char* file;  // in the test's folder
  // Writes version `v` of the file; true on success.
  bool (*write)(int v);
  // Whether `bytes` are version `v` of the file.
  bool (*holds)(const std::string& bytes, int v);
};

bool Contains(const std::string& bytes, const std::string& part) { return bytes.find(part) != std::string::npos; }

const Writer kWriters[] = {
    {"calendar", "Year.CLN",
     [](int v) {
       CalendarDocument doc = CreateCalendar(2000 + v, 0);
       SilentProgress progress;
       const int ok = SaveCalendar(&progress, JoinPath(Settings.ApplicationPath, "Year.CLN").c_str(), doc);
       FreeCalendar(doc);
       return ok == 1;
     },
     [](const std::string& bytes, int v) {
       int32_t year;
       std::memcpy(&year, bytes.data() + offsetof(CalendarHeader, Year), 4);
       return bytes.size() == 70139 && year == 2000 + v;
     }},
    {"events list", "General.CDF",
     [](int v) {
       // Enough lines that the file is larger than the disk in the failing case.
       std::vector<EventEntry> entries(100, EventEntry{0, v, "An event with a text of some length"});
       return WriteEventList("General", entries);
     },
     [](const std::string& bytes, int v) { return Contains(bytes, "Jan" + std::string(v < 10 ? "0" : "") + std::to_string(v)); }},
#ifndef _WIN32
    {"settings", "QUERNL.INI",
     [](int v) {
       SetConfigFolder(Settings.ApplicationPath);
       Settings.DateFontSize = static_cast<uint32_t>(v);
       SaveSettings({});
       return FileExists(ConfigFile(kSettingsFileName));
     },
     [](const std::string& bytes, int v) { return Contains(bytes, "\nDateFontSize = " + std::to_string(v) + "\n"); }},
#endif
};

class ReplacingFileTest : public QuernalTest {
 protected:
  std::set<std::string> Names(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
  }
};

}  // namespace

TEST_F(ReplacingFileTest, StaleLeftoversDoNotBlockAndNothingIsLeftBehind) {
  for (const Writer& w : kWriters) {
    SCOPED_TRACE(w.what);
    const std::string target = dir_.File(w.file);
    // What a killed save of another version left: a file and a folder under
    // the names a temporary file used to have.
    WriteFile(target + ".new", "stale");
    fs::create_directory(target + ".saving");
    ASSERT_TRUE(w.write(1));
    ASSERT_TRUE(w.write(2));
    EXPECT_TRUE(w.holds(ReadFile(target), 2));
    std::set<std::string> expected = {w.file, std::string(w.file) + ".new", std::string(w.file) + ".saving"};
    if (std::strcmp(w.what, "events list") == 0) expected.insert("General.BAK");
    EXPECT_EQ(Names(dir_.path()), expected);
    fs::remove_all(dir_.path());
    fs::create_directory(dir_.path());
  }
}

#ifndef _WIN32
TEST_F(ReplacingFileTest, ALinkStaysALinkAndTheFileKeepsItsPermissions) {
  TempDir elsewhere;
  for (const Writer& w : kWriters) {
    SCOPED_TRACE(w.what);
    const std::string target = dir_.File(w.file), real = elsewhere.File(w.file);
    ASSERT_TRUE(w.write(3));
    fs::rename(target, real);
    fs::create_symlink(real, target);
    chmod(real.c_str(), 0600);
    ASSERT_TRUE(w.write(4));
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_TRUE(w.holds(ReadFile(real), 4));
    struct stat st;
    ASSERT_EQ(stat(real.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0600u);
  }
}

TEST_F(ReplacingFileTest, AWriteThatFailsHalfWayKeepsThePreviousFile) {
  for (const Writer& w : kWriters) {
    SCOPED_TRACE(w.what);
    const std::string target = dir_.File(w.file);
    ASSERT_TRUE(w.write(5));
    const std::set<std::string> before = Names(dir_.path());
    // The disk fills up after a thousand bytes.
    struct rlimit old;
    getrlimit(RLIMIT_FSIZE, &old);
    struct rlimit small = old;
    small.rlim_cur = 1000;
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const bool wrote = w.write(6);
    setrlimit(RLIMIT_FSIZE, &old);
    EXPECT_FALSE(wrote && w.holds(ReadFile(target), 6));
    EXPECT_TRUE(w.holds(ReadFile(target), 5));
    EXPECT_EQ(Names(dir_.path()), before);
  }
}
#endif
