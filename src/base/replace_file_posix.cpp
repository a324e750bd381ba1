#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include "base/replace_file.h"

namespace {

std::string FolderOf(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// The permissions a newly created file gets: 0666 less the umask.
mode_t NewFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// The rename is only durable once the folder's entry is on the disk too.
bool SyncFolder(const std::string& folder) {
  const int fd = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
  if (fd < 0) return false;
  const bool ok = fsync(fd) == 0;
  close(fd);
  return ok;
}

std::string NameOf(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A temporary file is ".NAME.XXXXXX"; its writer holds a lock on it until
// it becomes the target or is removed.
constexpr size_t kRandomPart = 6;
// A file just made is locked a moment later: younger ones are left alone.
constexpr time_t kSettledSeconds = 5;

bool IsTemporaryOf(const std::string& entry, const std::string& name) {
  return entry.size() == name.size() + 2 + kRandomPart && entry[0] == '.' && entry.compare(1, name.size(), name) == 0 &&
         entry[name.size() + 1] == '.';
}

// Removes the temporary files of `name` in `folder` that no writer holds.
void RemoveStaleTemporaries(const std::string& folder, const std::string& name) {
  DIR* dir = opendir(folder.c_str());
  if (!dir) return;
  std::vector<std::string> stale;
  while (const dirent* entry = readdir(dir))
    if (IsTemporaryOf(entry->d_name, name)) stale.push_back(folder + "/" + entry->d_name);
  closedir(dir);
  for (const std::string& path : stale) {
    const int fd = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) continue;
    struct stat info;
    if (fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && std::time(nullptr) - info.st_mtime > kSettledSeconds &&
        flock(fd, LOCK_EX | LOCK_NB) == 0)
      unlink(path.c_str());
    close(fd);
  }
}

WriteProblem ProblemOf(int error) {
  return error == EACCES || error == EPERM || error == EROFS ? WriteProblem::kFolderRefuses : WriteProblem::kWriteFailed;
}

}  // namespace

namespace replace_file {

WriteProblem CheckTarget(const std::string& target) {
  struct stat info;
  if (lstat(target.c_str(), &info) != 0) return errno == ENOENT ? WriteProblem::kNone : WriteProblem::kWriteFailed;
  // A link is judged by what it points at; one that points at nothing is no file.
  if (S_ISLNK(info.st_mode) && stat(target.c_str(), &info) != 0) return WriteProblem::kNotAFile;
  if (!S_ISREG(info.st_mode)) return WriteProblem::kNotAFile;
  // No write permission for anyone is write protection even for root, who
  // may write anything.
  if ((info.st_mode & 0222) == 0 || access(target.c_str(), W_OK) != 0) return WriteProblem::kWriteProtected;
  return WriteProblem::kNone;
}

std::string FinalPath(const std::string& target) {
  struct stat link;
  if (lstat(target.c_str(), &link) != 0 || !S_ISLNK(link.st_mode)) return target;
  char resolved[PATH_MAX];
  return realpath(target.c_str(), resolved) ? std::string(resolved) : target;
}

std::FILE* CreateBeside(const std::string& target, bool, std::string* temporary, WriteProblem* problem) {
  const std::string name = NameOf(target);
  RemoveStaleTemporaries(FolderOf(target), name);
  std::string pattern = FolderOf(target) + "/." + name + ".XXXXXX";
  const int fd = mkstemp(&pattern[0]);
  if (fd < 0) {
    *problem = ProblemOf(errno);
    return nullptr;
  }
  // Held until the file is closed: while it is, nobody takes it for stale.
  flock(fd, LOCK_EX | LOCK_NB);
  struct stat old;
  const bool exists = stat(target.c_str(), &old) == 0;
  // Where the owner or the permissions cannot be given (only root may give
  // a file away; some file systems keep no permissions), the file stays ours
  // and private, which is the safe side.
  if (exists && fchown(fd, old.st_uid, old.st_gid) != 0) {
  }
  if (fchmod(fd, exists ? old.st_mode & 07777 : NewFileMode()) != 0) {
  }
  std::FILE* file = fdopen(fd, "wb");
  if (!file) {
    close(fd);
    unlink(pattern.c_str());
    *problem = WriteProblem::kWriteFailed;
    return nullptr;
  }
  *temporary = pattern;
  return file;
}

void Discard(const std::string& temporary) { unlink(temporary.c_str()); }

bool FlushAndClose(std::FILE* file) {
  bool ok = std::fflush(file) == 0 && fsync(fileno(file)) == 0;
  return std::fclose(file) == 0 && ok;
}

bool Replace(const std::string& temporary, const std::string& target, const char* backup) {
  if (backup) {
    unlink(backup);
    // A second name for the previous file keeps it as the backup while the
    // target never goes missing; where links cannot be made, it moves.
    if (access(target.c_str(), F_OK) == 0 && link(target.c_str(), backup) != 0 &&
        rename(target.c_str(), backup) != 0)
      return false;
  }
  if (rename(temporary.c_str(), target.c_str()) != 0) return false;
  SyncFolder(FolderOf(target));
  return true;
}

}  // namespace replace_file
