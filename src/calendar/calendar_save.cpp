// Saving a calendar file: the records in order, each picture's stream
// compressed on all cores or copied from a file that holds it unchanged.
#include "calendar/calendar_file.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/dib.h"
#include "base/regular_file.h"
#include "base/replace_file.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file_streams.h"
#include "calendar/event_list.h"
#include "config/settings.h"

using namespace calendar_io;

namespace {

StreamCounts g_lastSave;

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
