// Loading a calendar file: the records read in order while their pictures
// inflate on all cores.
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
