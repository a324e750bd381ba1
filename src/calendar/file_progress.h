// What loading and saving a calendar needs from the user interface while it
// works: the status window with its bar, the wait cursor, and the question
// about a damaged record. The Win32 shell answers with its status window and
// a message box, the command-line tool without asking anybody.
#pragma once

class FileProgress {
 public:
  virtual ~FileProgress() = default;
  // Opens the status window with `caption` ("Saving X.CLN") and the wait cursor.
  virtual void Begin(const char* caption) = 0;
  // Moves the bar to `current` of `total`.
  virtual void Advance(int current, int total) = 0;
  // Closes the status window and restores the cursor.
  virtual void End() = 0;
  // Asks `question` with Yes and No; true for Yes.
  virtual bool AskYesNo(const char* question) = 0;
};

// Shows nothing and answers every question with `answer`.
class SilentProgress : public FileProgress {
 public:
  explicit SilentProgress(bool answer = true) : answer_(answer) {}
  void Begin(const char*) override {}
  void Advance(int, int) override {}
  void End() override {}
  bool AskYesNo(const char*) override { return answer_; }

 private:
  bool answer_;
};
