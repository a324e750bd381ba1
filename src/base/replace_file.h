// Writing a file so that neither a failed write nor a power loss can destroy
// the previous one: the new contents go to a temporary file of its own name
// beside the target, reach the disk, and only then take the target's place in
// one step. A symbolic link as target keeps pointing where it did (the file it
// points at is replaced), and the target keeps its permissions.
//
// What is never replaced: anything but a regular file (a device, a FIFO, a
// folder, a socket; a link to one of them or to nothing), and a
// write-protected file. Temporary files that a writer killed mid-way left
// beside the target are removed by the next write of a file in that folder.
#pragma once
#include <cstdio>
#include <string>

// Why a file could not be written.
enum class WriteProblem {
  kNone,
  kNotAFile,        // the target is a device, a FIFO, a folder, a socket or a broken link
  kWriteProtected,  // the target may not be written
  kFolderRefuses,   // no new file may be made in the target's folder
  kWriteFailed,     // writing failed: no room, a size limit, a disk error
};
// What the last ReplacingFile of this thread ran into; kNone after a commit.
WriteProblem LastWriteProblem();
// The problem in a few words: "is not a regular file", "is write-protected",
// "its folder does not allow a new file to be made in it", "cannot be written".
const char* WriteProblemText(WriteProblem problem);

class ReplacingFile {
 public:
  // Creates the temporary file; `text` opens it in text mode (CR LF line
  // ends on Windows).
  ReplacingFile(const std::string& target, bool text);
  // Removes the temporary file unless Commit succeeded.
  ~ReplacingFile();
  ReplacingFile(const ReplacingFile&) = delete;
  ReplacingFile& operator=(const ReplacingFile&) = delete;

  // Where to write; nullptr when the target is refused or the temporary
  // file could not be made (LastWriteProblem says which).
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
// Whether `target` (as given, links not yet followed) may be replaced.
WriteProblem CheckTarget(const std::string& target);
// A new file of a name nobody else uses, in the folder of `target`, with the
// target's permissions (or a new file's when there is none); its name in
// `temporary`. Temporary files there whose writers are gone are removed
// first. nullptr when none can be made, with the reason in `problem`.
std::FILE* CreateBeside(const std::string& target, bool text, std::string* temporary, WriteProblem* problem);
// Removes a temporary file that did not become the target.
void Discard(const std::string& temporary);
// Closes the file after its data reached the disk; false when anything failed.
bool FlushAndClose(std::FILE* file);
// Moves `temporary` over `target` (keeping the previous target as `backup`
// when given) and makes the change durable; false leaves `target` as it was.
bool Replace(const std::string& temporary, const std::string& target, const char* backup);
}  // namespace replace_file
