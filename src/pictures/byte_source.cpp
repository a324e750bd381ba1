#include "pictures/byte_source.h"

#include <cstring>
#include <new>

#include "pictures/image_files.h"

bool MemorySource::Read(uint64_t offset, void* to, size_t n) {
  if (offset > size_ || n > size_ - offset) return false;
  if (n) std::memcpy(to, data_ + offset, n);
  return true;
}

namespace {

// The file's size, or -1 when it cannot be told or is too large to be a
// picture of ours.
long FileSize(std::FILE* f) {
  if (std::fseek(f, 0, SEEK_END) != 0) return -1;
  long size = std::ftell(f);
  if (std::fseek(f, 0, SEEK_SET) != 0) return -1;
  if (size < 0 || static_cast<unsigned long>(size) > kMaxImageBytes) return -1;
  return size;
}

}  // namespace

FileSource::FileSource(const char* path) {
  std::FILE* f = path ? std::fopen(path, "rb") : nullptr;
  if (!f) return;
  long size = FileSize(f);
  if (size < 0) {
    std::fclose(f);
    return;
  }
  file_ = f;
  size_ = static_cast<uint64_t>(size);
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

FileBytes ReadWholeFile(const char* path) {
  FileBytes bytes;
  std::FILE* f = path ? std::fopen(path, "rb") : nullptr;
  if (!f) return bytes;
  long size = FileSize(f);
  if (size >= 0) {
    // One byte more than needed, so an empty file still has a buffer.
    std::unique_ptr<uint8_t[]> data(new (std::nothrow) uint8_t[static_cast<size_t>(size) + 1]);
    if (data && std::fread(data.get(), 1, static_cast<size_t>(size), f) == static_cast<size_t>(size)) {
      bytes.data = std::move(data);
      bytes.size = static_cast<size_t>(size);
    }
  }
  std::fclose(f);
  return bytes;
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
