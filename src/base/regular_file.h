// Opening a file named by a user or by a calendar file for reading, without
// ever waiting: only a regular file (or a link to one) is opened; a FIFO, a
// device, a socket or a folder is refused at once, before anything is read.
#pragma once
#include <cstdint>
#include <cstdio>

// `path` open for reading (in text mode with `text`), or nullptr when it
// cannot be opened or is no regular file. `size` (when given) receives the
// file's size as it stood when opened.
std::FILE* OpenRegularFile(const char* path, bool text, uint64_t* size = nullptr);
