// Quernal.exe started as a user starts it, driven from outside through its
// window: it shows its title, and on exit writes its settings.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

namespace {

// Quernal.exe beside this test program.
std::string ProgramPath() {
  char path[MAX_PATH];
  DWORD n = GetModuleFileNameA(nullptr, path, sizeof path);
  std::string p(path, n);
  return p.substr(0, p.find_last_of('\\') + 1) + "Quernal.exe";
}

// The configuration folder, made as an installer would make it.
std::string ConfigFolder() {
  char appData[MAX_PATH];
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, appData);
  std::string folder = std::string(appData) + "\\Tarnwick\\";
  CreateDirectoryA(folder.c_str(), nullptr);
  return folder;
}

std::string ReadAll(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

class Running {
 public:
  explicit Running(const std::string& arguments = "") {
    std::string command = "\"" + ProgramPath() + "\"" + (arguments.empty() ? "" : " " + arguments);
    STARTUPINFOA si{};
    si.cb = sizeof si;
    started_ = CreateProcessA(nullptr, &command[0], nullptr, nullptr, FALSE, 0, nullptr, nullptr, &si, &pi_);
    for (int i = 0; started_ && i < 200 && !window_; ++i) {
      Sleep(100);
      window_ = FindWindowA("QuernalApplication", nullptr);
    }
    Sleep(300);  // the commands posted at creation
  }
  ~Running() {
    if (!started_) return;
    if (WaitForSingleObject(pi_.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(pi_.hProcess, 1);
    CloseHandle(pi_.hProcess);
    CloseHandle(pi_.hThread);
  }
  HWND window() const { return window_; }
  std::string Title() const {
    char text[512] = "";
    GetWindowTextA(window_, text, sizeof text);
    return text;
  }
  // Closes the window as the user does and waits for the program to end.
  bool Close() {
    PostMessageA(window_, WM_SYSCOMMAND, SC_CLOSE, 0);
    return WaitForSingleObject(pi_.hProcess, 20000) == WAIT_OBJECT_0;
  }

 private:
  PROCESS_INFORMATION pi_{};
  bool started_ = false;
  HWND window_ = nullptr;
};

const char* const kMonths[12] = {"January", "February", "March",     "April",   "May",      "June",
                                 "July",    "August",   "September", "October", "November", "December"};

}  // namespace

TEST(MainWindow, ShowsTodaysMonthAndWritesItsSettingsOnExit) {
  const std::string ini = ConfigFolder() + "QUERNL.INI";
  DeleteFileA(ini.c_str());
  Running quernal;
  ASSERT_NE(quernal.window(), nullptr) << "no main window appeared";
  std::time_t now = std::time(nullptr);
  const std::string month = kMonths[std::localtime(&now)->tm_mon];
  EXPECT_EQ(quernal.Title(), "Quernal [ Untitled.CLN \x96 " + month + " ]");

  // The page commands change the page and the title with it.
  SendMessageA(quernal.window(), WM_COMMAND, 323, 0);
  EXPECT_EQ(quernal.Title(), "Quernal [ Untitled.CLN \x96 Cover ]");

  ASSERT_TRUE(quernal.Close());
  const std::string settings = ReadAll(ini);
  EXPECT_EQ(settings.rfind(";Quernal configuration file", 0), 0u) << settings.substr(0, 200);
  EXPECT_NE(settings.find("[Quernal]"), std::string::npos);
  EXPECT_NE(settings.find("StartMaximized = 0"), std::string::npos);
  EXPECT_EQ(settings.find("StickyWindowLeft = 4294967295"), std::string::npos) << "the window's edges are kept";
}

TEST(MainWindow, AMissingConfigurationFolderIsNoError) {
  char appData[MAX_PATH];
  SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, appData);
  const std::string folder = std::string(appData) + "\\Tarnwick";
  DeleteFileA((folder + "\\QUERNL.INI").c_str());
  RemoveDirectoryA(folder.c_str());
  Running quernal;
  ASSERT_NE(quernal.window(), nullptr);
  ASSERT_TRUE(quernal.Close());
  EXPECT_EQ(GetFileAttributesA(folder.c_str()), INVALID_FILE_ATTRIBUTES) << "the program never makes the folder";
}
