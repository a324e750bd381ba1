#include "pictures/byte_source.h"

#include <cstring>
#include <new>

#include "base/regular_file.h"
#include "pictures/image_files.h"

bool MemorySource::Read(uint64_t offset, void* to, size_t n) {
  if (offset > size_ || n > size_ - offset) return false;
  if (n) std::memcpy(to, data_ + offset, n);
  return true;
}

namespace {

// `path` open for reading when it is a regular file small enough to be a
// picture of ours; nullptr otherwise (a FIFO or a device is never waited on).
std::FILE* OpenPictureFile(const char* path, uint64_t* size) {
  std::FILE* f = OpenRegularFile(path, false, size);
  if (f && *size > kMaxPictureBytes) {
    std::fclose(f);
    return nullptr;
  }
  return f;
}

}  // namespace

FileSource::FileSource(const char* path) {
  file_ = OpenPictureFile(path, &size_);
  if (!file_) size_ = 0;
}

FileSource::~FileSource() {
  if (file_) std::fclose(file_);
}

bool FileSource::Read(uint64_t offset, void* to, size_t n) {
  if (!file_ || offset > size_ || n > size_ - offset) return false;
  if (offset != position_ && std::fseek(file_, static_cast<long>(offset), SEEK_SET) != 0) return false;
  size_t got = std::fread(to, 1, n, file_);
  position_ = offset + got;
  return got == n;
}

uint8_t FieldReader::U8() {
  uint8_t b = 0;
  Bytes(&b, 1);
  return b;
}

uint16_t FieldReader::U16le() {
  uint8_t b[2] = {};
  Bytes(b, 2);
  return static_cast<uint16_t>(b[0] | b[1] << 8);
}

uint16_t FieldReader::U16be() {
  uint8_t b[2] = {};
  Bytes(b, 2);
  return static_cast<uint16_t>(b[0] << 8 | b[1]);
}

uint32_t FieldReader::U32le() {
  uint8_t b[4] = {};
  Bytes(b, 4);
  return static_cast<uint32_t>(b[0]) | static_cast<uint32_t>(b[1]) << 8 | static_cast<uint32_t>(b[2]) << 16 |
         static_cast<uint32_t>(b[3]) << 24;
}

uint32_t FieldReader::U32be() {
  uint8_t b[4] = {};
  Bytes(b, 4);
  return static_cast<uint32_t>(b[0]) << 24 | static_cast<uint32_t>(b[1]) << 16 | static_cast<uint32_t>(b[2]) << 8 |
         static_cast<uint32_t>(b[3]);
}

void FieldReader::Bytes(void* to, size_t n) {
  if (ok_ && source_.Read(offset_, to, n)) {
    offset_ += n;
    return;
  }
  ok_ = false;
  std::memset(to, 0, n);
}

void FieldReader::Skip(uint64_t n) {
  uint64_t size = source_.Size();
  uint64_t left = offset_ < size ? size - offset_ : 0;
  if (n > left) {
    ok_ = false;
    offset_ = size;
    return;
  }
  offset_ += n;
}
