// Two commands changing one calendar at once must not lose either change
// without a word: a command that reads a calendar, changes it and saves it
// holds an advisory lock on the file from before the read until after the
// save. Another such command waits a few seconds for it, then gives up
// saying why.
#pragma once
#include <string>

class CalendarLock {
 public:
  // Locks `path` (nothing to lock when it does not exist yet), waiting up to
  // `waitSeconds`; on failure a line on stderr names the file.
  explicit CalendarLock(const std::string& path, double waitSeconds = 5.0);
  ~CalendarLock();
  CalendarLock(const CalendarLock&) = delete;
  CalendarLock& operator=(const CalendarLock&) = delete;
  bool ok() const { return ok_; }

 private:
  int fd_ = -1;
  bool ok_ = false;
};
