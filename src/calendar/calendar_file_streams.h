// What saving and loading a calendar file share: positions in large files,
// work on every core, and the zlib streams the pictures are kept in.
#pragma once
#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "base/global_block.h"
#include "base/text.h"
#include "calendar/picture_streams.h"

namespace calendar_io {

// Streams are inflated 8 KiB of input and 8 KiB of output at a time, as
// calendar files have always been read: where a stream stops short, the
// bytes it gives depend on those steps.
constexpr uint32_t kChunk = 8192;
// The file is read in larger pieces, handed to inflate 8 KiB at a time.
constexpr uint32_t kReadChunk = 1 << 16;
// Deflate cannot expand data by more than about 1,032 to 1, so a stream that
// claims more than this many bytes per compressed byte is damaged, and the
// block need not be allocated to find out.
constexpr uint64_t kMaxInflateRatio = 1032;
// The header record and its cover picture, then the twelve months.
constexpr int kRecords = 13;

inline bool Tell(std::FILE* f, uint64_t* position) {
#ifdef _WIN32
  long long p = _ftelli64(f);
#else
  off_t p = ftello(f);
#endif
  if (p < 0) return false;
  *position = static_cast<uint64_t>(p);
  return true;
}

inline bool Seek(std::FILE* f, uint64_t position, int whence = SEEK_SET) {
#ifdef _WIN32
  return _fseeki64(f, static_cast<long long>(position), whence) == 0;
#else
  return fseeko(f, static_cast<off_t>(position), whence) == 0;
#endif
}

inline bool Truncate(std::FILE* f, uint64_t size) {
  if (std::fflush(f) != 0) return false;
#ifdef _WIN32
  return _chsize_s(_fileno(f), static_cast<long long>(size)) == 0;
#else
  return ftruncate(fileno(f), static_cast<off_t>(size)) == 0;
#endif
}

inline bool WriteAll(std::FILE* f, const void* data, size_t size) { return std::fwrite(data, 1, size, f) == size; }
inline bool ReadAll(std::FILE* f, void* data, size_t size) { return std::fread(data, 1, size, f) == size; }
inline bool ReadAt(std::FILE* f, uint64_t at, void* data, size_t size) { return Seek(f, at) && ReadAll(f, data, size); }

inline std::string Caption(const char* verb, const char* path) { return std::string(verb) + " " + FileNamePart(path); }

inline unsigned Cores() { return std::max(1u, std::thread::hardware_concurrency()); }

// Runs `work` on a thread of its own; where no thread can be had, here and now.
template <class Work>
void Start(std::thread* thread, Work work) {
  try {
    *thread = std::thread(work);
  } catch (...) {
    work();
  }
}
inline void Join(std::thread* thread) {
  if (thread->joinable()) thread->join();
}

// Runs work(i) for every i below `count`, on every core.
template <class Work>
void OnAllCores(int count, Work work) {
  std::atomic<int> next{0};
  auto loop = [&] {
    for (int i; (i = next++) < count;) work(i);
  };
  std::vector<std::thread> threads(std::min<unsigned>(Cores(), static_cast<unsigned>(count)));
  for (std::thread& t : threads) Start(&t, loop);
  for (std::thread& t : threads) Join(&t);
}

// Deflates `size` bytes as one zlib stream at `level`, handing each piece of
// output to put(bytes, count), which returns false to fail. Every stream of
// the file is made by this one loop, so a stream made on a worker is the
// same, byte for byte, as one compressed straight into the file.
template <class Put>
bool DeflateBytes(const uint8_t* data, uint32_t size, int level, uint32_t* written, Put put) {
  z_stream z{};
  if (deflateInit(&z, level) != Z_OK) return false;
  z.next_in = const_cast<Bytef*>(data);
  z.avail_in = size;
  unsigned char out[kChunk];
  uint32_t total = 0;
  bool ok = true;
  for (int flush = Z_NO_FLUSH; ok;) {
    z.next_out = out;
    z.avail_out = kChunk;
    int result = deflate(&z, flush);
    uint32_t produced = kChunk - z.avail_out;
    if (result == Z_STREAM_ERROR || !put(out, produced)) ok = false;
    total += produced;
    if (result == Z_STREAM_END) break;
    if (flush == Z_NO_FLUSH && z.avail_in == 0) flush = Z_FINISH;
  }
  if (deflateEnd(&z) != Z_OK) ok = false;
  *written = total;
  return ok;
}

// The CRC-32 of a stream passing by in pieces.
struct StreamCrc {
  uint32_t crc = 0;
  void Take(const uint8_t* p, size_t n) {
    for (size_t step; n > 0; p += step, n -= step) {
      step = std::min<size_t>(n, 1u << 30);
      crc = static_cast<uint32_t>(crc32(crc, p, static_cast<uInt>(step)));
    }
  }
};

// What reading one picture stream found out.
struct StreamRead {
  StreamCrc crc;        // of the compressed bytes handed to inflate
  uint8_t head[2] = {};  // the first two of them
  // The stream ended exactly where its record does and filled its block
  // exactly: only such a stream is worth copying into another file.
  bool whole = false;
};

// Inflates a stream of `length` bytes from `file` into `size` zero-filled
// bytes at `data`, taking the output into `sum` (when given) while it is
// still in the cache; *filled receives the bytes the stream put there.
// Output past the block is dropped; a stream that runs on past it by more
// than the block again (1 MiB at least) is read no further, so a few bytes
// cannot keep the loader inflating for hours. Touches no block, so it runs on
// any thread.
bool InflateInto(std::FILE* file, uint32_t length, uint8_t* data, uint32_t size, uint32_t* filled,
                 BlockChecksum* sum, StreamRead* read);

// Inflates a stream of unknown size into a block made at the first output and
// grown with each one, up to `limit` bytes (more is a damaged stream).
BlockHandle InflateGrowing(std::FILE* file, uint32_t length, uint32_t limit, uint32_t* produced, bool* outOfMemory,
                           StreamRead* read);

}  // namespace calendar_io
