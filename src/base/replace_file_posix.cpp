#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>

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

}  // namespace

namespace replace_file {

std::string FinalPath(const std::string& target) {
  struct stat link;
  if (lstat(target.c_str(), &link) != 0 || !S_ISLNK(link.st_mode)) return target;
  char resolved[PATH_MAX];
  return realpath(target.c_str(), resolved) ? std::string(resolved) : target;
}

std::FILE* CreateBeside(const std::string& target, bool, std::string* temporary) {
  const size_t slash = target.find_last_of('/');
  const std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
  std::string pattern = FolderOf(target) + "/." + name + ".XXXXXX";
  const int fd = mkstemp(&pattern[0]);
  if (fd < 0) return nullptr;
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
    return nullptr;
  }
  *temporary = pattern;
  return file;
}

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
