#include "cli/calendar_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

bool SameFile(int fd, const std::string& path) {
  struct stat open, named;
  return fstat(fd, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
         open.st_ino == named.st_ino;
}

}  // namespace

// A save puts a new file in the old one's place, so the lock a waiting
// command finally gets may be on the file that is gone: it then locks the
// file the name stands for now.
CalendarLock::CalendarLock(const std::string& path, double waitSeconds) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(waitSeconds);
  for (;;) {
    // Read-only and non-blocking: a FIFO or a device is not waited on here;
    // the save refuses it.
    fd_ = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd_ < 0) {
      // A new file has nobody to wait for; one that cannot be opened (a
      // socket, no permission) is for the read or the save to refuse.
      ok_ = true;
      return;
    }
    if (flock(fd_, LOCK_EX | LOCK_NB) == 0) {
      if (SameFile(fd_, path)) {
        ok_ = true;
        return;
      }
    } else if (std::chrono::steady_clock::now() >= until) {
      std::fprintf(stderr,
                   "quernal-cli: %s: another program is changing this calendar; nothing was changed, try again "
                   "when it has finished\n",
                   path.c_str());
      close(fd_);
      fd_ = -1;
      return;
    }
    close(fd_);
    fd_ = -1;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
}

CalendarLock::~CalendarLock() {
  if (fd_ >= 0) close(fd_);
}
