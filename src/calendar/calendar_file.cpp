#include "calendar/calendar_file.h"

#include <zlib.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include "base/dib.h"
#include "base/regular_file.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "calendar/picture_streams.h"
#include "config/settings.h"

namespace {

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

StreamCounts g_lastSave;

bool Tell(std::FILE* f, uint64_t* position) {
#ifdef _WIN32
  long long p = _ftelli64(f);
#else
  off_t p = ftello(f);
#endif
  if (p < 0) return false;
  *position = static_cast<uint64_t>(p);
  return true;
}

bool Seek(std::FILE* f, uint64_t position, int whence = SEEK_SET) {
#ifdef _WIN32
  return _fseeki64(f, static_cast<long long>(position), whence) == 0;
#else
  return fseeko(f, static_cast<off_t>(position), whence) == 0;
#endif
}

bool Truncate(std::FILE* f, uint64_t size) {
  if (std::fflush(f) != 0) return false;
#ifdef _WIN32
  return _chsize_s(_fileno(f), static_cast<long long>(size)) == 0;
#else
  return ftruncate(fileno(f), static_cast<off_t>(size)) == 0;
#endif
}

bool WriteAll(std::FILE* f, const void* data, size_t size) { return std::fwrite(data, 1, size, f) == size; }
bool ReadAll(std::FILE* f, void* data, size_t size) { return std::fread(data, 1, size, f) == size; }
bool ReadAt(std::FILE* f, uint64_t at, void* data, size_t size) { return Seek(f, at) && ReadAll(f, data, size); }

std::string Caption(const char* verb, const char* path) { return std::string(verb) + " " + FileNamePart(path); }

unsigned Cores() { return std::max(1u, std::thread::hardware_concurrency()); }

// Runs `work` on a thread of its own; where no thread can be had, here and now.
template <class Work>
void Start(std::thread* thread, Work work) {
  try {
    *thread = std::thread(work);
  } catch (...) {
    work();
  }
}
void Join(std::thread* thread) {
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

// Inflates a stream of `length` bytes from `file` into `size` zero-filled
// bytes at `data`, taking the output into `sum` (when given) while it is
// still in the cache; *filled receives the bytes the stream put there.
// Output past the block is dropped; a stream that runs on past it by more
// than the block again (1 MiB at least) is read no further, so a few bytes
// cannot keep the loader inflating for hours. Touches no block, so it runs on
// any thread.
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

// Inflates a stream of unknown size into a block made at the first output and
// grown with each one, up to `limit` bytes (more is a damaged stream).
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

// ---------------------------------------------------------------- saving

void SetPictureDataSize(CalendarHeader* header, uint32_t size) { header->CoverPictureDataSize = size; }
void SetPictureDataSize(MonthPage* page, uint32_t size) { page->PictureDataSize = size; }

// One picture of the calendar being saved, and how its stream is made.
struct SavePicture {
  BlockHandle block = 0;
  std::unique_ptr<BlockLock> lock;
  const uint8_t* data = nullptr;
  uint32_t size = 0;
  uint64_t checksum = 0;
  // Either the stream is copied from a file that holds it...
  bool copy = false;
  std::string from;
  KnownStream known;
  // ...or a worker compresses it into memory, in pieces so it never moves.
  int queue = -1;  // its place among the streams to compress
  std::thread worker;
  std::vector<std::vector<uint8_t>> pieces;
  bool compressed = false;
};

// Compresses a picture into memory on a worker. When memory runs short the
// stream is left empty and the writer compresses it straight into the file.
void CompressInMemory(SavePicture* p, int level) {
  constexpr size_t kPiece = 1 << 20;
  try {
    uint32_t written;
    p->compressed = DeflateBytes(p->data, p->size, level, &written, [p](const uint8_t* bytes, uint32_t n) {
      while (n > 0) {
        if (p->pieces.empty() || p->pieces.back().size() == kPiece) {
          p->pieces.emplace_back();
          p->pieces.back().reserve(kPiece);
        }
        std::vector<uint8_t>& piece = p->pieces.back();
        uint32_t take = static_cast<uint32_t>(std::min<size_t>(n, kPiece - piece.size()));
        piece.insert(piece.end(), bytes, bytes + take);
        bytes += take;
        n -= take;
      }
      return true;
    });
  } catch (...) {
    p->compressed = false;
  }
  if (!p->compressed) p->pieces.clear();
}

// Writes the records in order, each picture's stream copied from the file it
// came from when unchanged, else compressed on all cores, at most one stream
// per core ahead of the writer.
class Saver {
 public:
  Saver(std::FILE* out, int level) : out_(out), level_(level) {
    written.reserve(kRecords);
    queue_.reserve(kRecords);
  }
  ~Saver() {
    for (SavePicture& p : pictures_) Join(&p.worker);
    for (auto& source : sources_)
      if (source.second) std::fclose(source.second);
  }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;

  bool Write(CalendarDocument document, FileProgress* progress);
  std::vector<KnownStream> written;  // where the streams went in the new file
  StreamCounts counts;

 private:
  void Plan();
  void StartNextCompression();
  template <class Record>
  bool WriteRecord(Record* record, SavePicture* p);
  bool Copy(SavePicture* p, StreamCrc* crc);
  template <class Record>
  bool CompressIntoFile(Record* record, uint64_t start, SavePicture* p);
  void Remember(uint64_t offset, uint32_t length, const SavePicture& p, int level, int levelField,
                const StreamCrc& crc);

  std::FILE* out_;
  int level_;
  SavePicture pictures_[kRecords];
  std::vector<SavePicture*> queue_;  // to compress, in file order
  size_t started_ = 0;
  uint64_t end_ = 0;      // where the next record starts
  uint64_t reached_ = 0;  // the furthest any write went
  std::map<std::string, std::FILE*> sources_;
  std::vector<uint8_t> copyBuffer_;
};

bool Saver::Write(CalendarDocument document, FileProgress* progress) {
  CalendarHeader header;
  std::vector<MonthPage> pages(12);
  if (!GetHeader(document, &header)) return false;
  // Handles mean nothing outside this process; the file keeps them as flags.
  pictures_[0].block = header.CoverPictureShowPicture ? header.CoverPicture : 0;
  header.CoverPicture = header.CoverPicture ? 1 : 0;
  for (int month = 0; month < 12; ++month) {
    MonthPage& page = pages[month];
    if (!GetMonthPage(document, month, &page)) return false;
    // A hidden picture is deliberately not saved.
    pictures_[month + 1].block = page.PictureShowPicture ? page.Picture : 0;
    page.Picture = pictures_[month + 1].block ? 1 : 0;
    page.Events = 0;
  }
  Plan();
  if (!WriteRecord(&header, &pictures_[0])) return false;
  for (int month = 0; month < 12; ++month) {
    if (!WriteRecord(&pages[month], &pictures_[month + 1])) return false;
    // The bar moves only for months that carry a picture.
    if (pictures_[month + 1].block) progress->Advance(month + 1, 12);
  }
  // A copy that failed half way may have written past what replaced it.
  return reached_ <= end_ || Truncate(out_, end_);
}

// Locks the pictures (the block store is this thread's), takes their
// checksums on all cores, and starts compressing those no file holds.
void Saver::Plan() {
  for (SavePicture& p : pictures_) {
    if (!p.block) continue;
    p.lock.reset(new BlockLock(p.block));
    p.data = p.lock->bytes();
    p.size = p.data ? GlobalBlockSize(p.block) : 0;  // a dead handle saves an empty stream, as ever
  }
  OnAllCores(kRecords, [this](int i) {
    SavePicture& p = pictures_[i];
    if (p.size) p.checksum = ChecksumOf(p.data, p.size);
  });
  for (SavePicture& p : pictures_) {
    if (!p.block) continue;
    p.copy = p.size && FindPictureStream(p.checksum, p.size, level_, &p.from, &p.known);
    if (!p.copy) queue_.push_back(&p);
  }
  for (unsigned i = 0; i < Cores(); ++i) StartNextCompression();
}

void Saver::StartNextCompression() {
  if (started_ == queue_.size()) return;
  SavePicture* p = queue_[started_++];
  const int level = level_;
  Start(&p->worker, [p, level] { CompressInMemory(p, level); });
}

template <class Record>
bool Saver::WriteRecord(Record* record, SavePicture* p) {
  const uint64_t start = end_;
  if (!p->block) {
    end_ += sizeof *record;
    return WriteAll(out_, record, sizeof *record);
  }
  SetPictureDataSize(record, p->size);
  if (p->copy && p->known.length > UINT32_MAX - sizeof *record) return CompressIntoFile(record, start, p);
  if (p->copy) {
    record->RecordSize = static_cast<uint32_t>(sizeof *record) + p->known.length;
    StreamCrc crc;
    if (!WriteAll(out_, record, sizeof *record)) return false;
    if (Copy(p, &crc)) {
      end_ = start + sizeof *record + p->known.length;
      ++counts.copied;
      Remember(start + sizeof *record, p->known.length, *p, p->known.level, p->known.levelField, crc);
      return true;
    }
    // The file changed under us after all: compress instead, over what was copied.
    uint64_t at;
    if (!Tell(out_, &at) || !Seek(out_, start)) return false;
    reached_ = std::max(reached_, at);
    return CompressIntoFile(record, start, p);
  }
  Join(&p->worker);
  StartNextCompression();
  if (!p->compressed) return CompressIntoFile(record, start, p);
  uint64_t length = 0;
  for (const auto& piece : p->pieces) length += piece.size();
  if (length > UINT32_MAX - sizeof *record) return false;
  record->RecordSize = static_cast<uint32_t>(sizeof *record + length);
  if (!WriteAll(out_, record, sizeof *record)) return false;
  StreamCrc crc;
  for (const auto& piece : p->pieces) {
    crc.Take(piece.data(), piece.size());
    if (!WriteAll(out_, piece.data(), piece.size())) return false;
  }
  p->pieces.clear();
  p->pieces.shrink_to_fit();
  end_ = start + sizeof *record + length;
  ++counts.compressed;
  Remember(start + sizeof *record, static_cast<uint32_t>(length), *p, level_, LevelField(level_), crc);
  return true;
}

// Copies the stream the table names; false when the source cannot give
// exactly its bytes, with the CRC-32 they had when recorded.
bool Saver::Copy(SavePicture* p, StreamCrc* crc) {
  auto found = sources_.find(p->from);
  if (found == sources_.end()) found = sources_.emplace(p->from, OpenRegularFile(p->from.c_str(), false)).first;
  std::FILE* source = found->second;
  if (!source || !Seek(source, p->known.offset)) return false;
  copyBuffer_.resize(1 << 20);
  for (uint32_t left = p->known.length; left > 0;) {
    const uint32_t n = std::min<uint32_t>(left, static_cast<uint32_t>(copyBuffer_.size()));
    if (!ReadAll(source, copyBuffer_.data(), n) || !WriteAll(out_, copyBuffer_.data(), n)) return false;
    crc->Take(copyBuffer_.data(), n);
    left -= n;
  }
  return crc->crc == p->known.crc;
}

// The way of old: the record, the stream straight into the file behind it,
// then the record again with its full length. Needs no memory beyond 8 KiB.
template <class Record>
bool Saver::CompressIntoFile(Record* record, uint64_t start, SavePicture* p) {
  if (!WriteAll(out_, record, sizeof *record)) return false;
  StreamCrc crc;
  uint32_t written;
  if (!DeflateBytes(p->data, p->size, level_, &written, [&](const uint8_t* bytes, uint32_t n) {
        crc.Take(bytes, n);
        return WriteAll(out_, bytes, n);
      }))
    return false;
  record->RecordSize = static_cast<uint32_t>(sizeof *record) + written;
  end_ = start + sizeof *record + written;
  if (!Seek(out_, start) || !WriteAll(out_, record, sizeof *record) || !Seek(out_, end_)) return false;
  ++counts.compressed;
  Remember(start + sizeof *record, written, *p, level_, LevelField(level_), crc);
  return true;
}

void Saver::Remember(uint64_t offset, uint32_t length, const SavePicture& p, int level, int levelField,
                     const StreamCrc& crc) {
  if (!p.size || length < 6) return;
  KnownStream s;
  s.checksum = p.checksum;
  s.size = p.size;
  s.offset = offset;
  s.length = length;
  s.level = level;
  s.levelField = levelField;
  s.crc = crc.crc;
  written.push_back(s);
}

// ---------------------------------------------------------------- loading

// What a worker made of one picture stream.
struct Inflated {
  bool opened = false;  // the worker could open the file at all
  bool ok = false;
  uint64_t checksum = 0;
  StreamRead stream;
};

// Replaces the document's month record, freeing the blocks the record held.
bool ReplaceMonthPage(CalendarDocument document, int month, const MonthPage* page) {
  MonthPage old;
  if (!GetMonthPage(document, month, &old)) return false;
  FreeMonthPage(&old);
  return PutMonthPage(document, month, page);
}

// Inflates one stream into `size` bytes at `data` from `f`, with the
// block's checksum.
void InflateRecord(std::FILE* f, uint64_t at, uint32_t length, uint8_t* data, uint32_t size, Inflated* out) {
  BlockChecksum sum;
  uint32_t filled;
  out->ok = Seek(f, at) && InflateInto(f, length, data, size, &filled, &sum, &out->stream);
  if (out->ok) out->checksum = sum.Finish(data, size);
}

// The same through a file handle of its own.
void InflateOnWorker(const char* path, uint64_t at, uint32_t length, uint8_t* data, uint32_t size, Inflated* out) {
  std::FILE* f = OpenRegularFile(path, false);
  if (!f) return;
  out->opened = true;
  InflateRecord(f, at, length, data, size, out);
  std::fclose(f);
}

// One record of the file being loaded, from its reading to its place in the
// document.
struct LoadRecord {
  int month = -1;  // -1 for the header
  CalendarHeader header;
  MonthPage page;
  // Its picture stream.
  enum class Picture { kNone, kDamaged, kInflating, kRead } picture = Picture::kNone;
  uint64_t streamAt = 0;
  int64_t compressed = 0;
  uint32_t dataSize = 0;
  BlockHandle block = 0;
  uint8_t* data = nullptr;
  std::thread worker;
  Inflated result;
};

// Reads the records in order on this thread while the pictures inflate on
// all cores, and puts each record in the document in order once its picture
// is done: questions, the budget and the bar come exactly as if one picture
// were read after the other.
class Loader {
 public:
  Loader(std::FILE* f, const char* path, CalendarDocument document, FileProgress* progress, LoadFailure* failure)
      : f_(f), path_(path), document_(document), progress_(progress), failure_(failure), cores_(Cores()) {
    streams.reserve(kRecords);  // so that adding one never fails while a picture is in hand
  }
  ~Loader() {
    // A load that failed leaves pictures nobody took.
    for (int i = 0; i < kRecords; ++i) {
      LoadRecord& r = records_[i];
      Join(&r.worker);
      if (r.picture == LoadRecord::Picture::kInflating) GlobalBlockUnlock(r.block);
      if (r.block) GlobalBlockFree(r.block);
    }
  }
  Loader(const Loader&) = delete;
  Loader& operator=(const Loader&) = delete;

  bool Read();
  std::vector<KnownStream> streams;  // the pictures read, for the table

 private:
  bool StartPicture(int index);
  bool CommitNext();
  bool CommitBefore(int index);
  BlockHandle TakePicture(LoadRecord* r);

  std::FILE* f_;
  const char* path_;
  CalendarDocument document_;
  FileProgress* progress_;
  LoadFailure* failure_;
  const unsigned cores_;
  std::unique_ptr<LoadRecord[]> records_{new LoadRecord[kRecords]};  // too big for the stack
  int read_ = 0;       // records read from the file
  int committed_ = 0;  // records put in the document
  unsigned inflating_ = 0;
  uint64_t budget_ = kMaxDocumentPictureBytes;  // what the pictures put in the document leave
  uint64_t reserved_ = 0;                       // what the pictures in flight will take if sound
};

bool Loader::Read() {
  LoadRecord& h = records_[0];
  if (!ReadAt(f_, 0, &h.header, sizeof h.header) || h.header.Magic != kHeaderMagic) return false;
  progress_->Advance(1, 12);
  uint64_t at = h.header.RecordSize;
  if (h.header.CoverPicture) {
    h.streamAt = kHeaderSize;
    h.compressed = static_cast<int64_t>(h.header.RecordSize) - kHeaderSize;
    h.dataSize = h.header.CoverPictureDataSize;
    if (!StartPicture(0)) return false;
  }
  read_ = 1;
  for (int month = 0; month < 12; ++month) {
    LoadRecord& r = records_[month + 1];
    r.month = month;
    // A broken record fails the load, but only after the questions about the
    // pictures before it, as when one record was read after the other.
    if (!ReadAt(f_, at, &r.page, sizeof r.page) || r.page.Magic != kPageMagic) {
      CommitBefore(read_);
      return false;
    }
    if (r.page.Picture) {
      r.streamAt = at + kMonthPageSize;
      r.compressed = static_cast<int64_t>(r.page.RecordSize) - kMonthPageSize;
      r.dataSize = r.page.PictureDataSize;
      if (!StartPicture(month + 1)) return false;
    }
    read_ = month + 2;
    // Whatever the stream held, the next record starts where this one says it ends.
    at += r.page.RecordSize;
  }
  return CommitBefore(read_);
}

// Starts reading the picture of record `index`; what cannot be decided yet
// (the budget, memory, a stream of unknown size) waits for the records before.
bool Loader::StartPicture(int index) {
  LoadRecord& r = records_[index];
  r.picture = LoadRecord::Picture::kDamaged;
  if (r.compressed <= 0 || r.compressed > UINT32_MAX) return true;
  const uint32_t length = static_cast<uint32_t>(r.compressed);
  if (r.dataSize == 0) {
    // Only odd files leave the size out: read such a stream here, in order.
    if (!CommitBefore(index)) return false;
    uint32_t produced = 0;
    bool outOfMemory = false;
    BlockHandle block = 0;
    if (Seek(f_, r.streamAt))
      block = InflateGrowing(f_, length, static_cast<uint32_t>(std::min<uint64_t>(kMaxPictureBytes, budget_)),
                             &produced, &outOfMemory, &r.result.stream);
    if (outOfMemory) {
      *failure_ = LoadFailure::kOutOfMemory;
      return false;
    }
    if (block) {
      r.picture = LoadRecord::Picture::kRead;
      r.block = block;
      r.result.ok = true;
      BlockLock lock(block);
      r.result.checksum = ChecksumOf(lock.bytes(), GlobalBlockSize(block));
    }
    return true;
  }
  if (r.dataSize > kMaxPictureBytes || r.dataSize > length * kMaxInflateRatio + 64) return true;
  while (inflating_ >= cores_)
    if (!CommitNext()) return false;
  // The pictures in flight may all turn out sound; when this one might not
  // fit beside them, wait for them and decide exactly.
  if (r.dataSize + reserved_ > budget_) {
    if (!CommitBefore(index)) return false;
    if (r.dataSize > budget_) return true;
  }
  BlockHandle block = GlobalBlockAlloc(r.dataSize);
  if (!block) {
    // Pictures in flight that turn out damaged give their memory back.
    if (!CommitBefore(index)) return false;
    block = GlobalBlockAlloc(r.dataSize);
  }
  if (!block) {
    *failure_ = LoadFailure::kOutOfMemory;
    return false;
  }
  r.block = block;
  r.data = static_cast<uint8_t*>(GlobalBlockLock(block));
  r.picture = LoadRecord::Picture::kInflating;
  reserved_ += r.dataSize;
  ++inflating_;
  Start(&r.worker, [this, &r, length] { InflateOnWorker(path_, r.streamAt, length, r.data, r.dataSize, &r.result); });
  return true;
}

// The record's picture once read, sound and a usable Dib, or 0.
BlockHandle Loader::TakePicture(LoadRecord* r) {
  if (r->picture == LoadRecord::Picture::kInflating) {
    Join(&r->worker);
    --inflating_;
    reserved_ -= r->dataSize;
    if (!r->result.opened) {
      // No second handle on the file: read it with ours instead.
      InflateRecord(f_, r->streamAt, static_cast<uint32_t>(r->compressed), r->data, r->dataSize, &r->result);
    }
    GlobalBlockUnlock(r->block);
  }
  r->picture = LoadRecord::Picture::kNone;
  BlockHandle block = r->block;
  r->block = 0;
  if (block && (!r->result.ok || !DibBlockIsValid(block))) {
    GlobalBlockFree(block);
    block = 0;
  }
  return block;
}

bool Loader::CommitNext() {
  LoadRecord& r = records_[committed_++];
  const bool expected = r.picture != LoadRecord::Picture::kNone;
  const BlockHandle picture = TakePicture(&r);
  if (picture) {
    budget_ -= GlobalBlockSize(picture);
    // A stream read only as far as it went is compressed again at the next
    // save rather than copied on.
    if (r.result.stream.whole) {
      KnownStream s;
      s.checksum = r.result.checksum;
      s.size = GlobalBlockSize(picture);
      s.offset = r.streamAt;
      s.length = static_cast<uint32_t>(r.compressed);
      s.levelField = LevelFieldOfStream(r.result.stream.head);
      s.crc = r.result.stream.crc.crc;
      streams.push_back(s);
    }
  }
  if (r.month < 0) {
    CalendarHeader& header = r.header;
    if (expected && !picture && !progress_->AskYesNo(kDamagedRecordQuestion)) return false;
    if (expected) {
      header.CoverPicture = picture;
      header.CoverPictureShowPicture = picture ? 1 : 0;
    }
    header.RecordSize = kHeaderSize;
    header.Changed = 0;
    TerminateTexts(&header);
    if (!PutHeader(document_, &header)) {
      if (picture) GlobalBlockFree(picture);
      return false;
    }
    return true;
  }
  MonthPage& page = r.page;
  TerminateTexts(&page);
  page.Events = LoadEventList(page.DaysName);
  if (expected) {
    page.Picture = picture;
    page.PictureShowPicture = picture ? 1 : 0;
    if (!picture && !progress_->AskYesNo(kDamagedRecordQuestion)) {
      FreeMonthPage(&page);
      return false;
    }
  }
  page.RecordSize = kMonthPageSize;
  if (!ReplaceMonthPage(document_, r.month, &page)) {
    FreeMonthPage(&page);
    return false;
  }
  progress_->Advance(r.month + 1, 12);
  return true;
}

bool Loader::CommitBefore(int index) {
  while (committed_ < index)
    if (!CommitNext()) return false;
  return true;
}

}  // namespace

StreamCounts LastSaveStreamCounts() { return g_lastSave; }

bool PicturesFitOneFile(CalendarDocument document, uint64_t* total) {
  uint64_t sum = 0;
  bool fit = true;
  // The records are packed: their handles are copied, never referred to.
  const auto count = [&](BlockHandle picture) {
    const uint32_t size = picture ? GlobalBlockSize(picture) : 0;
    fit = fit && size <= kMaxPictureBytes;
    sum += size;
  };
  CalendarHeader header;
  if (GetHeader(document, &header)) count(BlockHandle{header.CoverPicture});
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    if (GetMonthPage(document, month, &page)) count(BlockHandle{page.Picture});
  }
  if (total) *total = sum;
  return fit && sum <= kMaxDocumentPictureBytes;
}

int SaveCalendar(FileProgress* progress, const char* path, CalendarDocument document) {
  if (!PicturesFitOneFile(document)) return 0;
  progress->Begin(Caption("Saving", path).c_str());
  g_lastSave = StreamCounts{};
  const int level = static_cast<int>(std::min<uint32_t>(std::max<uint32_t>(Settings.ImageCompression, 1), 9));
  std::vector<KnownStream> streams;
  ReplacingFile out(path, false);
  bool ok = out.file() != nullptr;
  if (ok) {
    static char buffer[1 << 16];
    std::setvbuf(out.file(), buffer, _IOFBF, sizeof buffer);
    // The files streams are copied from are closed before the new file takes
    // its place, which may be one of them.
    try {
      Saver saver(out.file(), level);
      ok = saver.Write(document, progress);
      g_lastSave = saver.counts;
      streams = std::move(saver.written);
    } catch (...) {  // memory for the bookkeeping ran out
      ok = false;
    }
  }
  ok = ok && out.Commit();
  if (ok) {
    FileStamp stamp;
    if (ReadFileStamp(path, &stamp)) RememberPictureStreams(path, stamp, std::move(streams));
    else ForgetPictureStreams(path);
  }
  progress->End();
  return ok ? 1 : 0;
}

CalendarDocument LoadCalendar(FileProgress* progress, const char* path, LoadFailure* failure) {
  LoadFailure why = LoadFailure::kNone;
  CalendarDate today = Today();
  progress->Begin(Caption("Opening", path).c_str());
  // The file may have changed since it was last read or written here.
  ForgetPictureStreams(path);
  FileStamp before, after;
  const bool stamped = ReadFileStamp(path, &before);
  CalendarDocument document = CreateCalendar(today.year, today.month - 1);
  if (!document) why = LoadFailure::kOutOfMemory;
  // A FIFO or a device given as a calendar is refused at once, never waited on.
  std::FILE* f = document ? OpenRegularFile(path, false) : nullptr;
  static char buffer[1 << 16];
  if (f) std::setvbuf(f, buffer, _IOFBF, sizeof buffer);
  bool ok = false;
  if (f) {
    try {
      Loader loader(f, path, document, progress, &why);
      ok = loader.Read();
      if (ok && stamped && ReadFileStamp(path, &after) && after == before)
        RememberPictureStreams(path, before, std::move(loader.streams));
    } catch (...) {  // memory for the bookkeeping ran out
      ok = false;
      why = LoadFailure::kOutOfMemory;
    }
  }
  if (f) std::fclose(f);
  if (!ok && document) {
    FreeCalendar(document);
    document = 0;
  }
  if (!ok && why == LoadFailure::kNone) why = LoadFailure::kUnreadable;
  if (failure) *failure = why;
  progress->End();
  return document;
}

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
