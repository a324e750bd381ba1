// Every command that writes keeps the user's files, whatever the target is
// and whatever goes wrong: odd targets are refused and left as they are,
// write protection is respected, a size limit ends a save cleanly, stale
// temporary files go, two writers never lose a change silently, and
// running out of memory ends with the program's message.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

#include "calendar/calendar_file.h"
#include "cli/cli_run.h"

namespace fs = std::filesystem;

namespace {

const std::string kSaveFailed = kSaveFailedMessage;

class SafetyCliTest : public CliTest {
 protected:
  void SetUp() override {
    CliTest::SetUp();
    cal_ = dir_.File("cal.CLN");
    ASSERT_EQ(Cli("new --year 2027 -o " + Q(cal_)).status, 0);
    WriteFile(dir_.File("holidays.ics"),
              "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART;VALUE=DATE:20270101\r\nSUMMARY:New Year\r\n"
              "END:VEVENT\r\nEND:VCALENDAR\r\n");
  }
  // The folder's names, each with its kind: what a refused command must leave.
  std::set<std::string> Folder(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(folder))
      names.insert(e.path().filename().string() + ":" + std::to_string(static_cast<int>(e.symlink_status().type())));
    return names;
  }
  // Every writing command onto `name` in `folder`: a shell prefix and the
  // arguments (events lists are named without a path, in the folder they
  // are written in).
  std::vector<std::pair<std::string, std::string>> WritersOnto(const std::string& folder, const std::string& name) {
    const std::string target = Q(folder + "/" + name);
    std::vector<std::pair<std::string, std::string>> writers = {
        {"", "new -o " + target}, {"", "set " + target + " DateShadow=0"}, {"", "resave " + Q(cal_) + " -o " + target},
        {"", "render --new --page 0 --format png --width 40 --height 50 -o " + target}};
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".CDF") == 0)
      writers.push_back({"cd " + Q(folder) + " && ", "events import " + Q(dir_.File("holidays.ics")) + " --year 2027 -o " + name});
    return writers;
  }
  static bool IsRoot() { return geteuid() == 0; }
  std::string cal_;
};

}  // namespace

TEST_F(SafetyCliTest, OnlyRegularFilesAreReplaced) {
  const std::string odd = dir_.File("odd");
  ASSERT_EQ(mkdir(odd.c_str(), 0755), 0);
  const std::string fifo = odd + "/fifo.CDF", folder = odd + "/folder.CDF";
  // folder, name: a target that is not a regular file (a socket or a device
  // node fails the same test as the FIFO), a link to one, a link to nothing,
  // and /dev/null, a device anyone may name.
  ASSERT_EQ(mkfifo(fifo.c_str(), 0644), 0);
  ASSERT_EQ(mkdir(folder.c_str(), 0755), 0);
  fs::create_symlink(fifo, odd + "/to-fifo.CDF");
  fs::create_symlink(odd + "/missing.CDF", odd + "/dangling.CDF");
  const std::vector<std::pair<std::string, std::string>> targets = {
      {odd, "fifo.CDF"}, {odd, "folder.CDF"}, {odd, "to-fifo.CDF"}, {odd, "dangling.CDF"}, {"/dev", "null"}};
  const std::set<std::string> before = Folder(odd);
  struct stat devNull;
  ASSERT_EQ(stat("/dev/null", &devNull), 0);
  for (const auto& target : targets) {
    for (const auto& writer : WritersOnto(target.first, target.second)) {
      const std::string& command = writer.second;
      const CliRun r = Cli(command, writer.first + "timeout 20 ");
      EXPECT_EQ(r.status, 1) << command << "\n" << r.err;
      // `set` has nothing to read from a link to nothing, and says so.
      const bool readsFirst = command.compare(0, 4, "set ") == 0 && target.second == "dangling.CDF";
      EXPECT_TRUE(Has(r.err, readsFirst ? "error reading this file" : "not a regular file")) << command << "\n" << r.err;
    }
  }
  EXPECT_EQ(Folder(odd), before);
  struct stat after;
  ASSERT_EQ(stat("/dev/null", &after), 0);
  EXPECT_TRUE(S_ISCHR(after.st_mode) && after.st_rdev == devNull.st_rdev);
}

TEST_F(SafetyCliTest, WriteProtectionAndAClosedFolderAreRespected) {
  const std::string before = ReadFile(cal_);
  ASSERT_EQ(chmod(cal_.c_str(), 0444), 0);
  CliRun r = Cli("set " + Q(cal_) + " DateShadow=0");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, kSaveFailed + " (it is write-protected)")) << r.err;
  EXPECT_TRUE(ReadFile(cal_) == before);

  // A writable calendar in a folder where no new file may be made; root may
  // make files anywhere, so the command runs as nobody then.
  ASSERT_EQ(chmod(cal_.c_str(), 0666), 0);
  ASSERT_EQ(chmod(dir_.path().c_str(), 0555), 0);
  const std::string as = IsRoot() ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  r = Cli("set " + Q(cal_) + " DateShadow=0", as);
  chmod(dir_.path().c_str(), 0755);
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(Has(r.err, "its folder does not allow a new file to be made in it")) << r.err;
  EXPECT_FALSE(Has(r.err, "available space")) << r.err;
  EXPECT_TRUE(ReadFile(cal_) == before);
}

// A write the size limit stops fails as one on a full disk does (the
// program tells no cause from another).
TEST_F(SafetyCliTest, ASizeLimitEndsTheSaveAndKeepsTheFile) {
  const std::string photo = dir_.File("photo.bmp");
  ASSERT_EQ(RunCommand("convert -size 300x200 gradient:red-blue " + Q(photo)), 0);
  const std::string before = ReadFile(cal_);
  const std::set<std::string> names = Folder(dir_.path());
  const CliRun r = Cli("set " + Q(cal_) + " --page 0 --picture " + Q(photo), "ulimit -f 60; ");
  EXPECT_EQ(r.status, 1) << r.err;
  EXPECT_TRUE(Has(r.err, kSaveFailed)) << r.err;
  EXPECT_TRUE(ReadFile(cal_) == before);
  EXPECT_EQ(Folder(dir_.path()), names) << "no temporary file is left";
}

TEST_F(SafetyCliTest, StaleTemporaryFilesGoAndALiveWritersStays) {
  const std::string stale = dir_.File(".cal.CLN.k3Xq9Z"), live = dir_.File(".cal.CLN.Lv4Wr2");
  WriteFile(stale, std::string(100000, 'x'));
  WriteFile(live, "being written");
  ASSERT_EQ(RunCommand("touch -d '1 hour ago' " + Q(stale) + " " + Q(live)), 0);
  // The live one's writer holds its lock while the command runs.
  const CliRun r = Shell("flock " + Q(live) + " " + std::string(QUERNAL_CLI) + " set " + Q(cal_) + " DateShadow=0");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_FALSE(FileExists(stale));
  EXPECT_TRUE(FileExists(live));
}

TEST_F(SafetyCliTest, ASecondWriterWaitsForTheFirstOrSaysWhy) {
  const struct {
    const char* hold;  // how long another program holds the calendar
    int status;
    const char* said;
  } cases[] = {{"1", 0, ""}, {"9", 1, "another program is changing this calendar"}};
  for (const auto& c : cases) {
    const std::string before = ReadFile(cal_);
    const CliRun r = Shell("{ flock " + Q(cal_) + " sleep " + c.hold + " & sleep 0.3; " + std::string(QUERNAL_CLI) +
                           " set " + Q(cal_) + " --page 3 DateShadow=0; status=$?; wait; exit $status; }");
    EXPECT_EQ(r.status, c.status) << c.hold << "\n" << r.err;
    EXPECT_TRUE(Has(r.err, c.said)) << r.err;
    EXPECT_EQ(ReadFile(cal_) != before, c.status == 0) << c.hold;
  }
}

TEST_F(SafetyCliTest, RunningOutOfMemoryEndsWithTheProgramsMessage) {
  // From too little to enough: the command either works or says so, and no
  // library ends it (exit codes 128 and up are signals).
  for (const char* limit : {"150000", "250000", "300000", "350000", "600000"}) {
    for (const char* format : {"pdf", "png"}) {
      const CliRun r = Cli(std::string("render ") + QUERNAL_SAMPLE + " --all --format " + format + " -o " +
                               Q(dir_.File(std::string("out.") + format)),
                           std::string("ulimit -v ") + limit + "; ");
      EXPECT_TRUE(r.status == 0 || (r.status == 1 && Has(r.err, kMemoryFailedMessage)))
          << limit << " " << format << ": " << r.status << "\n" << r.err;
    }
  }
}
