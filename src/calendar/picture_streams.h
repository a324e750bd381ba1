// Which compressed picture streams lie, unchanged, in which calendar files,
// so that saving a picture nobody touched copies its stream instead of
// compressing it again. A stream is known by the checksum and size of the
// picture block it inflates to, never by the block's handle: the editors hand
// back deep copies of a page, with new handles and the same pixels.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// A fast 64-bit checksum of a block, fed as the block fills: four lanes of
// multiply-xor over 8-byte words, so it runs near memory bandwidth. Any one
// changed 8-byte word always changes the result.
class BlockChecksum {
 public:
  // Takes in the bytes base[0, upTo) not taken in yet, in whole 32-byte steps;
  // `base` is the same block at every call.
  void Absorb(const uint8_t* base, size_t upTo);
  // The checksum of all `size` bytes at `base`.
  uint64_t Finish(const uint8_t* base, size_t size);

 private:
  uint64_t lane_[4] = {0x243F6A8885A308D3u, 0x13198A2E03707344u, 0xA4093822299F31D0u, 0x082EFA98EC4E6C89u};
  size_t done_ = 0;
};
uint64_t ChecksumOf(const uint8_t* data, size_t size);

// The two-bit level field of a zlib stream's header that deflate writes for a
// compression level: 1 gives 0, 2..5 give 1, 6 gives 2, 7..9 give 3.
int LevelField(int level);
inline int LevelFieldOfStream(const uint8_t head[2]) { return head[1] >> 6; }

// When and how big a file was: a stream recorded in it is copied only while
// both are what they were (and its bytes still have their CRC-32).
struct FileStamp {
  uint64_t size = 0;
  int64_t modified = 0;  // nanoseconds where the system keeps them
  uint64_t id = 0;       // the file's number, where the system has one
  bool operator==(const FileStamp& o) const { return size == o.size && modified == o.modified && id == o.id; }
};
bool ReadFileStamp(const char* path, FileStamp* stamp);

struct KnownStream {
  uint64_t checksum = 0;  // of the picture block
  uint32_t size = 0;      // the block's size
  uint64_t offset = 0;    // where the stream starts in the file
  uint32_t length = 0;    // its bytes
  int level = 0;          // 1..9 when this program made it, 0 when only read
  int levelField = 0;     // the header's level field
  // The CRC-32 of the stream's bytes as they were read or written: a copy
  // counts only when the bytes it copied have it, so a file changed in place
  // with its size and time put back is never copied stale.
  uint32_t crc = 0;
};

// Forgets what is known of `path`'s streams (all files when null): the file
// is being read or written again.
void ForgetPictureStreams(const char* path = nullptr);
// Records the streams of `path` as it stands at `stamp`; only the last few
// files are kept.
void RememberPictureStreams(const char* path, const FileStamp& stamp, std::vector<KnownStream> streams);
// A stream that inflates to a block of this checksum and size, made at the
// compression `level` (or at one with the same header level field when only
// read), in a file still as it was; false when none is known.
bool FindPictureStream(uint64_t checksum, uint32_t size, int level, std::string* path, KnownStream* stream);
