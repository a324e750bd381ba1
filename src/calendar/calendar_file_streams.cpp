#include "calendar/calendar_file_streams.h"

#include <cstring>

#include "calendar/calendar_file.h"

namespace calendar_io {
namespace {

// Hands inflate the next 8 KiB of a compressed stream of known length.
class StreamInput {
 public:
  StreamInput(std::FILE* file, uint32_t length, StreamRead* read) : file_(file), remaining_(length), read_(read) {}
  // Refills the stream's input when it is empty; false when the file ends.
  bool Refill(z_stream* z) {
    if (z->avail_in > 0) return true;
    if (at_ == got_) {
      if (remaining_ == 0) return false;
      got_ = std::fread(buffer_, 1, std::min(remaining_, kReadChunk), file_);
      at_ = 0;
      if (got_ == 0) return false;
      remaining_ -= static_cast<uint32_t>(got_);
    }
    const size_t n = std::min<size_t>(got_ - at_, kChunk);
    for (size_t i = 0; taken_ + i < 2 && i < n; ++i) read_->head[taken_ + i] = buffer_[at_ + i];
    read_->crc.Take(buffer_ + at_, n);
    z->next_in = buffer_ + at_;
    z->avail_in = static_cast<uInt>(n);
    at_ += n;
    taken_ += n;
    return true;
  }

 private:
  std::FILE* file_;
  uint32_t remaining_;  // not yet read from the file
  StreamRead* read_;
  unsigned char buffer_[kReadChunk];
  size_t at_ = 0, got_ = 0;  // what of the buffer is handed out, and filled
  uint64_t taken_ = 0;
};

// What the output of one inflate step did.
enum class Took { kMore, kEnough, kFailed };

// Inflates a stream of `length` compressed bytes from `file` for as long as
// input remains: a stream that lacks its Adler-32, or stops short where its
// record ends, gives what it holds; only a stream that is corrupt, or a file
// that ends first, fails. Each step gets 8 KiB of output at window(), and
// take(out, count) is told what it produced: kEnough ends the reading there
// with success, kFailed fails it.
template <class Window, class Take>
bool InflateStream(std::FILE* file, uint32_t length, StreamRead* read, Window window, Take take) {
  z_stream z{};
  if (inflateInit(&z) != Z_OK) return false;
  StreamInput input(file, length, read);
  int result = Z_OK;
  bool ok = true;
  while (ok && z.total_in < length) {
    if (!input.Refill(&z)) {
      ok = false;
      break;
    }
    unsigned char* out = window();
    z.next_out = out;
    z.avail_out = kChunk;
    result = inflate(&z, Z_PARTIAL_FLUSH);
    if (result != Z_OK && result != Z_STREAM_END) {
      ok = false;
      break;
    }
    const Took took = take(out, kChunk - z.avail_out);
    if (took == Took::kFailed) ok = false;
    if (took != Took::kMore || result == Z_STREAM_END) break;
  }
  read->whole = ok && result == Z_STREAM_END && z.total_in == length;
  if (inflateEnd(&z) != Z_OK) ok = false;
  return ok;
}

}  // namespace

bool InflateInto(std::FILE* file, uint32_t length, uint8_t* data, uint32_t size, uint32_t* filled,
                 BlockChecksum* sum, StreamRead* read) {
  unsigned char spare[kChunk];
  const uint64_t mayDrop = std::max<uint64_t>(size, 1u << 20);
  uint64_t dropped = 0;
  *filled = 0;
  // Straight into the block while a whole step fits; the last steps go
  // through `spare`.
  auto window = [&] { return size - *filled >= kChunk ? data + *filled : spare; };
  auto take = [&](const unsigned char* out, uInt count) {
    if (out == spare) {
      const uint32_t keep = std::min<uint32_t>(count, size - *filled);
      std::memcpy(data + *filled, spare, keep);
      dropped += count - keep;
      count = keep;
    }
    *filled += count;
    if (sum) sum->Absorb(data, *filled);
    return dropped > mayDrop ? Took::kEnough : Took::kMore;
  };
  const bool ok = InflateStream(file, length, read, window, take);
  read->whole = read->whole && *filled == size && dropped == 0;
  return ok;
}

BlockHandle InflateGrowing(std::FILE* file, uint32_t length, uint32_t limit, uint32_t* produced, bool* outOfMemory,
                           StreamRead* read) {
  BlockHandle block = 0;
  uint32_t size = 0;
  unsigned char out[kChunk];
  auto window = [&] { return out; };
  auto take = [&](const unsigned char*, uInt count) {
    if (count == 0) return Took::kMore;
    if (static_cast<uint64_t>(size) + count > std::min(limit, kMaxPictureBytes)) return Took::kFailed;
    if (!block ? !(block = GlobalBlockAlloc(count)) : !GlobalBlockReAlloc(block, size + count)) {
      if (outOfMemory) *outOfMemory = true;
      return Took::kFailed;
    }
    BlockLock lock(block);
    std::memcpy(lock.bytes() + size, out, count);
    size += count;
    return Took::kMore;
  };
  const bool ok = InflateStream(file, length, read, window, take);
  // No output at all, an empty stream included, is no block.
  if (!ok || !block) {
    if (block) GlobalBlockFree(block);
    return 0;
  }
  *produced = size;
  return block;
}

}  // namespace calendar_io

using namespace calendar_io;

bool CompressBlockToFile(std::FILE* file, BlockHandle block, uint32_t* inOutSize, int level) {
  if (*inOutSize > GlobalBlockSize(block)) return false;
  BlockLock lock(block);
  if (!lock && *inOutSize > 0) return false;
  return DeflateBytes(lock.bytes(), *inOutSize, level, inOutSize,
                      [file](const uint8_t* bytes, uint32_t n) { return WriteAll(file, bytes, n); });
}

BlockHandle InflateBlockFromFile(std::FILE* file, uint32_t* inOutSize, uint32_t expectedSize, bool* outOfMemory) {
  if (expectedSize == 0 || expectedSize > kMaxPictureBytes) return 0;
  BlockHandle block = GlobalBlockAlloc(expectedSize);
  if (!block) {
    if (outOfMemory) *outOfMemory = true;
    return 0;
  }
  uint32_t filled = 0;
  StreamRead read;
  bool ok = InflateInto(file, *inOutSize, static_cast<uint8_t*>(GlobalBlockLock(block)), expectedSize, &filled,
                        nullptr, &read);
  GlobalBlockUnlock(block);
  if (!ok) {
    GlobalBlockFree(block);
    return 0;
  }
  *inOutSize = filled;
  return block;
}

BlockHandle InflateBlockFromFileGrowing(std::FILE* file, uint32_t* inOutSize, uint32_t limit, bool* outOfMemory) {
  uint32_t produced = 0;
  StreamRead read;
  BlockHandle block = InflateGrowing(file, *inOutSize, limit, &produced, outOfMemory, &read);
  if (block) *inOutSize = produced;
  return block;
}
