// Opening a file named by a user or by a calendar file for reading, without
// ever waiting: only a regular file (or a link to one) is opened; a FIFO, a
// device, a socket or a folder is refused at once, before anything is read.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

// `path` open for reading (in text mode with `text`), or nullptr when it
// cannot be opened or is no regular file. `size` (when given) receives the
// file's size as it stood when opened.
std::FILE* OpenRegularFile(const char* path, bool text, uint64_t* size = nullptr);

// Why a whole file could not be had.
enum class WholeFileProblem { kNone, kCannotOpen, kTooLarge, kCannotRead };
struct FileBytes {
  std::unique_ptr<uint8_t[]> data;  // with a byte to spare, so an empty file has a buffer too
  size_t size = 0;
  WholeFileProblem problem = WholeFileProblem::kNone;
};
// The whole of the regular file `path` in memory when it holds at most
// `limit` bytes; no data and the problem otherwise (memory running out is
// kCannotRead). errno tells why a file could not be opened, and is 0 for one
// that is no regular file.
FileBytes ReadWholeFile(const char* path, uint64_t limit);
