#include "base/regular_file.h"

#include <new>

#include <sys/stat.h>
#include <sys/types.h>

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

std::FILE* OpenRegularFile(const char* path, bool text, uint64_t* size) {
  if (!path) return nullptr;
#ifdef _WIN32
  // Opening a pipe or a device does not wait here; reading from one would.
  // The C library tells them from files by the handle's type.
  std::FILE* f = std::fopen(path, text ? "rt" : "rb");
  if (!f) return nullptr;
  struct _stat64 st;
  if (_fstat64(_fileno(f), &st) != 0 || (st.st_mode & _S_IFMT) != _S_IFREG) {
    std::fclose(f);
    return nullptr;
  }
#else
  (void)text;
  // Without O_NONBLOCK, opening a FIFO waits for a writer.
  const int fd = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  struct stat st;
  const int flags = fcntl(fd, F_GETFL);
  std::FILE* f = nullptr;
  if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && flags >= 0 && fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) == 0)
    f = fdopen(fd, "rb");
  if (!f) {
    close(fd);
    return nullptr;
  }
#endif
  if (size) *size = static_cast<uint64_t>(st.st_size);
  return f;
}

FileBytes ReadWholeFile(const char* path, uint64_t limit) {
  FileBytes bytes;
  uint64_t size = 0;
  std::FILE* f = OpenRegularFile(path, false, &size);
  if (!f) {
    bytes.problem = WholeFileProblem::kCannotOpen;
    return bytes;
  }
  if (size > limit) {
    bytes.problem = WholeFileProblem::kTooLarge;
  } else {
    std::unique_ptr<uint8_t[]> data(new (std::nothrow) uint8_t[static_cast<size_t>(size) + 1]);
    if (data && std::fread(data.get(), 1, static_cast<size_t>(size), f) == static_cast<size_t>(size)) {
      bytes.data = std::move(data);
      bytes.size = static_cast<size_t>(size);
    } else {
      bytes.problem = WholeFileProblem::kCannotRead;
    }
  }
  std::fclose(f);
  return bytes;
}
