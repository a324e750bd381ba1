// Where the format readers get their bytes: a whole file read into memory
// (for decoding) or an open file read piece by piece (for the information
// call, which reads headers and must not pull a large photograph in).
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  virtual uint64_t Size() const = 0;
  // Copies `n` bytes from `offset`; false when they are not all there.
  virtual bool Read(uint64_t offset, void* to, size_t n) = 0;
};

class MemorySource : public ByteSource {
 public:
  MemorySource(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  uint64_t Size() const override { return size_; }
  bool Read(uint64_t offset, void* to, size_t n) override;

 private:
  const uint8_t* data_;
  size_t size_;
};

class FileSource : public ByteSource {
 public:
  // Opens `path` for reading; ok() is false when it cannot be opened, is no
  // regular file (a FIFO or a device is refused without waiting) or is
  // larger than kMaxPictureBytes.
  explicit FileSource(const char* path);
  ~FileSource() override;
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;
  bool ok() const { return file_ != nullptr; }
  uint64_t Size() const override { return size_; }
  bool Read(uint64_t offset, void* to, size_t n) override;

 private:
  std::FILE* file_ = nullptr;
  uint64_t size_ = 0;
  uint64_t position_ = 0;  // seeking only when a read does not follow the last one
};


// Reads fields one after another. The first read past the end makes ok()
// false for good and every later read gives zero, so a parser can read a
// whole header and check once.
class FieldReader {
 public:
  explicit FieldReader(ByteSource& source, uint64_t offset = 0) : source_(source), offset_(offset) {}
  uint8_t U8();
  uint16_t U16le();
  uint16_t U16be();
  uint32_t U32le();
  uint32_t U32be();
  void Bytes(void* to, size_t n);
  void Skip(uint64_t n);
  void Seek(uint64_t offset) { offset_ = offset; }
  uint64_t Offset() const { return offset_; }
  uint64_t Size() const { return source_.Size(); }
  bool ok() const { return ok_; }

 private:
  ByteSource& source_;
  uint64_t offset_;
  bool ok_ = true;
};
