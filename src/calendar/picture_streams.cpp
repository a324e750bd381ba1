#include "calendar/picture_streams.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <cstring>
#include <deque>

namespace {

constexpr uint64_t kPrime1 = 0x9E3779B185EBCA87u;
constexpr uint64_t kPrime2 = 0xC2B2AE3D27D4EB4Fu;
constexpr uint64_t kPrime3 = 0x165667B19E3779F9u;

inline uint64_t RotateLeft(uint64_t v, int bits) { return (v << bits) | (v >> (64 - bits)); }
inline uint64_t Word(const uint8_t* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  return v;
}
// One step of a lane; a bijection of the word for any lane, and of the lane
// for any word, so one changed word can never leave the lane as it was. The
// rotation carries the high bits the multiplications make down to the low ones.
inline uint64_t Step(uint64_t lane, uint64_t word) { return RotateLeft(lane ^ (word * kPrime2), 31) * kPrime1; }

// The files whose streams are known, the most recent last.
struct KnownFile {
  std::string path;
  FileStamp stamp;
  std::vector<KnownStream> streams;
};
constexpr size_t kKnownFiles = 4;
std::deque<KnownFile>& KnownFiles() {
  static std::deque<KnownFile> files;
  return files;
}

}  // namespace

void BlockChecksum::Absorb(const uint8_t* base, size_t upTo) {
  for (; done_ + 32 <= upTo; done_ += 32) {
    const uint8_t* p = base + done_;
    lane_[0] = Step(lane_[0], Word(p));
    lane_[1] = Step(lane_[1], Word(p + 8));
    lane_[2] = Step(lane_[2], Word(p + 16));
    lane_[3] = Step(lane_[3], Word(p + 24));
  }
}

uint64_t BlockChecksum::Finish(const uint8_t* base, size_t size) {
  Absorb(base, size);
  uint64_t h = RotateLeft(lane_[0], 1) + RotateLeft(lane_[1], 7) + RotateLeft(lane_[2], 12) + RotateLeft(lane_[3], 18);
  size_t at = done_;
  for (; at + 8 <= size; at += 8) h = Step(h, Word(base + at));
  uint64_t last = 0;
  if (at < size) std::memcpy(&last, base + at, size - at);
  h = Step(h, last) ^ (static_cast<uint64_t>(size) * kPrime3);
  h ^= h >> 33;
  h *= kPrime2;
  h ^= h >> 29;
  h *= kPrime3;
  return h ^ (h >> 32);
}

uint64_t ChecksumOf(const uint8_t* data, size_t size) {
  BlockChecksum sum;
  return sum.Finish(data, size);
}

int LevelField(int level) { return level < 2 ? 0 : level < 6 ? 1 : level == 6 ? 2 : 3; }

bool ReadFileStamp(const char* path, FileStamp* stamp) {
#ifdef _WIN32
  struct _stat64 st;
  if (_stat64(path, &st) != 0) return false;
  stamp->modified = static_cast<int64_t>(st.st_mtime) * 1000000000;
  stamp->id = 0;
#else
  struct stat st;
  if (stat(path, &st) != 0) return false;
  stamp->modified = static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  stamp->id = (static_cast<uint64_t>(st.st_dev) << 32) ^ static_cast<uint64_t>(st.st_ino);
#endif
  stamp->size = static_cast<uint64_t>(st.st_size);
  return true;
}

void ForgetPictureStreams(const char* path) {
  auto& files = KnownFiles();
  for (auto it = files.begin(); it != files.end();) {
    if (!path || it->path == path) it = files.erase(it);
    else ++it;
  }
}

void RememberPictureStreams(const char* path, const FileStamp& stamp, std::vector<KnownStream> streams) {
  ForgetPictureStreams(path);
  if (streams.empty()) return;
  auto& files = KnownFiles();
  try {
    files.push_back(KnownFile{path, stamp, std::move(streams)});
  } catch (...) {  // out of memory: the next save compresses, that is all
    return;
  }
  while (files.size() > kKnownFiles) files.pop_front();
}

bool FindPictureStream(uint64_t checksum, uint32_t size, int level, std::string* path, KnownStream* stream) {
  auto& files = KnownFiles();
  for (size_t i = files.size(); i-- > 0;) {
    const KnownFile& file = files[i];
    for (const KnownStream& s : file.streams) {
      if (s.checksum != checksum || s.size != size) continue;
      if (s.level ? s.level != level : s.levelField != LevelField(level)) continue;
      FileStamp now;
      if (!ReadFileStamp(file.path.c_str(), &now) || !(now == file.stamp)) {
        // Changed since: nothing in it can be trusted any more.
        files.erase(files.begin() + static_cast<std::ptrdiff_t>(i));
        break;
      }
      *path = file.path;
      *stream = s;
      return true;
    }
  }
  return false;
}
