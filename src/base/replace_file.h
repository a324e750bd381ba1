// Writing a file so that neither a failed write nor a power loss can destroy
// the previous one: the new contents go to a temporary file of its own name
// beside the target, reach the disk, and only then take the target's place in
// one step. A symbolic link as target keeps pointing where it did (the file it
// points at is replaced), and the target keeps its permissions.
#pragma once
#include <cstdio>
#include <string>

class ReplacingFile {
 public:
  // Creates the temporary file; `text` opens it in text mode (CR LF line
  // ends on Windows).
  ReplacingFile(const std::string& target, bool text);
  // Removes the temporary file unless Commit succeeded.
  ~ReplacingFile();
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  // Where to write; nullptr when the temporary file could not be made.
  std::FILE* file() const { return file_; }
  // Flushes everything to the disk and puts the file in the target's place.
  // With `backup`, the previous target is kept under that name (an older
  // backup is replaced). False leaves the target as it was and the
  // temporary file removed.
  bool Commit(const char* backup = nullptr);

 private:
  std::string target_;  // the file a link points at, or the target itself
  std::string temporary_;
  std::FILE* file_ = nullptr;
};

// The platform's part, one implementation per system.
namespace replace_file {
// The file `target` names once symbolic links are followed; `target` itself
// when it does not exist yet.
std::string FinalPath(const std::string& target);
// A new file of a name nobody else uses, in the folder of `target`, with the
// target's permissions (or a new file's when there is none); its name in
// `temporary`. nullptr when none can be made.
std::FILE* CreateBeside(const std::string& target, bool text, std::string* temporary);
// Closes the file after its data reached the disk; false when anything failed.
bool FlushAndClose(std::FILE* file);
// Moves `temporary` over `target` (keeping the previous target as `backup`
// when given) and makes the change durable; false leaves `target` as it was.
bool Replace(const std::string& temporary, const std::string& target, const char* backup);
}  // namespace replace_file
