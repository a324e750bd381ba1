#include "calendar/calendar_file.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "base/dib.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "config/settings.h"

namespace {

constexpr uint32_t kChunk = 8192;
// Compressed input is read in larger pieces than the 8 KiB output steps:
// fewer, larger inflate calls keep loading within a few percent of zlib.
constexpr uint32_t kInputChunk = 1 << 16;
// Deflate cannot expand data by more than about 1,032 to 1, so a stream that
// claims more than this many bytes per compressed byte is damaged, and the
// block need not be allocated to find out.
constexpr uint64_t kMaxInflateRatio = 1032;

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

bool WriteAll(std::FILE* f, const void* data, size_t size) { return std::fwrite(data, 1, size, f) == size; }
bool ReadAll(std::FILE* f, void* data, size_t size) { return std::fread(data, 1, size, f) == size; }

std::string Caption(const char* verb, const char* path) { return std::string(verb) + " " + FileNamePart(path); }

void SetPictureDataSize(CalendarHeader* header, uint32_t size) { header->CoverPictureDataSize = size; }
void SetPictureDataSize(MonthPage* page, uint32_t size) { page->PictureDataSize = size; }

// Writes `record` at its start, then (when a picture follows) compresses the
// picture behind it and rewrites the record with its full length.
template <class Record>
bool WriteRecordWithPicture(std::FILE* f, Record* record, BlockHandle picture, int level) {
  uint64_t start;
  if (!Tell(f, &start) || !WriteAll(f, record, sizeof *record)) return false;
  if (!picture) return true;
  uint32_t written = GlobalBlockSize(picture);
  SetPictureDataSize(record, written);
  if (!CompressBlockToFile(f, picture, &written, level)) return false;
  record->RecordSize = static_cast<uint32_t>(sizeof *record) + written;
  return Seek(f, start) && WriteAll(f, record, sizeof *record) && Seek(f, 0, SEEK_END);
}

bool WriteCalendar(std::FILE* f, CalendarDocument document, FileProgress* progress) {
  int level = static_cast<int>(std::min<uint32_t>(std::max<uint32_t>(Settings.ImageCompression, 1), 9));
  CalendarHeader header;
  if (!GetHeader(document, &header)) return false;
  // Handles mean nothing outside this process; the file keeps them as flags.
  BlockHandle cover = header.CoverPictureShowPicture ? header.CoverPicture : 0;
  header.CoverPicture = header.CoverPicture ? 1 : 0;
  if (!WriteRecordWithPicture(f, &header, cover, level)) return false;
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    if (!GetMonthPage(document, month, &page)) return false;
    // A hidden picture is deliberately not saved.
    BlockHandle picture = page.PictureShowPicture ? page.Picture : 0;
    page.Picture = picture ? 1 : 0;
    page.Events = 0;
    if (!WriteRecordWithPicture(f, &page, picture, level)) return false;
    // The bar moves only for months that carry a picture.
    if (picture) progress->Advance(month + 1, 12);
  }
  return true;
}

// What reading one picture stream gave.
enum class PictureRead { kPicture, kDamaged, kOutOfMemory };

// Reads one picture stream of `compressed` bytes that should inflate to a
// usable Dib of at most `budget` bytes (what the document may still hold).
PictureRead ReadPicture(std::FILE* f, int64_t compressed, uint32_t dataSize, uint32_t budget, BlockHandle* picture) {
  *picture = 0;
  if (compressed <= 0 || compressed > UINT32_MAX) return PictureRead::kDamaged;
  uint32_t length = static_cast<uint32_t>(compressed);
  const uint32_t limit = std::min(kMaxPictureBytes, budget);
  bool outOfMemory = false;
  BlockHandle block;
  if (dataSize) {
    if (dataSize > limit || dataSize > length * kMaxInflateRatio + 64) return PictureRead::kDamaged;
    block = InflateBlockFromFile(f, &length, dataSize, &outOfMemory);
  } else {
    block = InflateBlockFromFileGrowing(f, &length, limit, &outOfMemory);
  }
  if (outOfMemory) return PictureRead::kOutOfMemory;
  if (block && !DibBlockIsValid(block)) {
    GlobalBlockFree(block);
    block = 0;
  }
  *picture = block;
  return block ? PictureRead::kPicture : PictureRead::kDamaged;
}

// Reads a picture for the loader: a damaged stream asks the question (Yes
// goes on without it), running out of memory fails the load at once.
bool LoadPicture(std::FILE* f, int64_t compressed, uint32_t dataSize, FileProgress* progress, uint32_t* budget,
                 LoadFailure* failure, BlockHandle* picture) {
  switch (ReadPicture(f, compressed, dataSize, *budget, picture)) {
    case PictureRead::kPicture: *budget -= GlobalBlockSize(*picture); return true;
    case PictureRead::kOutOfMemory: *failure = LoadFailure::kOutOfMemory; return false;
    case PictureRead::kDamaged: break;
  }
  return progress->AskYesNo(kDamagedRecordQuestion);
}

// Replaces the document's month record, freeing the blocks the record held.
bool ReplaceMonthPage(CalendarDocument document, int month, const MonthPage* page) {
  MonthPage old;
  if (!GetMonthPage(document, month, &old)) return false;
  FreeMonthPage(&old);
  return PutMonthPage(document, month, page);
}

bool ReadCalendar(std::FILE* f, CalendarDocument document, FileProgress* progress, LoadFailure* failure) {
  CalendarHeader header;
  if (!ReadAll(f, &header, sizeof header) || header.Magic != kHeaderMagic) return false;
  const uint32_t headerLength = header.RecordSize;
  uint32_t budget = kMaxDocumentPictureBytes;
  progress->Advance(1, 12);
  if (header.CoverPicture) {
    BlockHandle cover;
    if (!LoadPicture(f, static_cast<int64_t>(headerLength) - kHeaderSize, header.CoverPictureDataSize, progress,
                     &budget, failure, &cover))
      return false;
    header.CoverPicture = cover;
    header.CoverPictureShowPicture = cover ? 1 : 0;
  }
  header.RecordSize = kHeaderSize;
  header.Changed = 0;
  TerminateTexts(&header);
  if (!PutHeader(document, &header)) {
    if (header.CoverPicture) GlobalBlockFree(header.CoverPicture);
    return false;
  }
  if (!Seek(f, headerLength)) return false;

  for (int month = 0; month < 12; ++month) {
    uint64_t start;
    MonthPage page;
    if (!Tell(f, &start) || !ReadAll(f, &page, sizeof page) || page.Magic != kPageMagic) return false;
    const uint32_t recordLength = page.RecordSize;
    TerminateTexts(&page);
    page.Events = LoadEventList(page.DaysName);
    if (page.Picture) {
      BlockHandle picture;  // not the packed record's field: it may sit unaligned
      page.Picture = 0;
      if (!LoadPicture(f, static_cast<int64_t>(recordLength) - kMonthPageSize, page.PictureDataSize, progress,
                       &budget, failure, &picture)) {
        FreeMonthPage(&page);
        return false;
      }
      page.Picture = picture;
      page.PictureShowPicture = picture ? 1 : 0;
    }
    page.RecordSize = kMonthPageSize;
    if (!ReplaceMonthPage(document, month, &page)) {
      FreeMonthPage(&page);
      return false;
    }
    // Whatever the stream held, the next record starts where this one says it ends.
    if (!Seek(f, start + recordLength)) return false;
    progress->Advance(month + 1, 12);
  }
  return true;
}

// Pulls the next piece of a compressed stream of known length from a file.
class StreamInput {
 public:
  StreamInput(std::FILE* file, uint32_t length) : file_(file), remaining_(length) {}
  // Refills the stream's input when it is empty; false when the file ends.
  bool Refill(z_stream* z) {
    if (z->avail_in > 0 || remaining_ == 0) return true;
    size_t got = std::fread(buffer_, 1, std::min(remaining_, kInputChunk), file_);
    if (got == 0) return false;
    remaining_ -= static_cast<uint32_t>(got);
    z->next_in = buffer_;
    z->avail_in = static_cast<uInt>(got);
    return true;
  }

 private:
  std::FILE* file_;
  uint32_t remaining_;
  unsigned char buffer_[kInputChunk];
};

// Runs inflate until the stream ends. `room` is called before every step to
// point the output at free space, `took` after it with the bytes produced;
// either returning false fails the stream.
template <class Room, class Took>
bool InflateStream(std::FILE* file, uint32_t length, uint32_t* produced, Room room, Took took) {
  z_stream z{};
  if (inflateInit(&z) != Z_OK) return false;
  StreamInput input(file, length);
  int result = Z_OK;
  bool ok = true;
  while (ok && result != Z_STREAM_END) {
    if (!input.Refill(&z) || !room(&z)) {
      ok = false;
      break;
    }
    uInt before = z.avail_out;
    uLong consumedBefore = z.total_in;
    result = inflate(&z, Z_PARTIAL_FLUSH);
    if (result != Z_OK && result != Z_STREAM_END) ok = false;
    // A stream that neither consumes nor produces is cut short.
    else if (z.avail_out == before && z.total_in == consumedBefore && result != Z_STREAM_END) ok = false;
    if (ok && !took(before - z.avail_out)) ok = false;
  }
  *produced = static_cast<uint32_t>(z.total_out);
  if (inflateEnd(&z) != Z_OK) ok = false;
  return ok;
}

}  // namespace

int SaveCalendar(FileProgress* progress, const char* path, CalendarDocument document) {
  progress->Begin(Caption("Saving", path).c_str());
  ReplacingFile out(path, false);
  bool ok = out.file() != nullptr;
  if (ok) {
    static char buffer[1 << 16];
    std::setvbuf(out.file(), buffer, _IOFBF, sizeof buffer);
    ok = WriteCalendar(out.file(), document, progress) && out.Commit();
  }
  progress->End();
  return ok ? 1 : 0;
}

CalendarDocument LoadCalendar(FileProgress* progress, const char* path, LoadFailure* failure) {
  LoadFailure why = LoadFailure::kNone;
  CalendarDate today = Today();
  progress->Begin(Caption("Opening", path).c_str());
  CalendarDocument document = CreateCalendar(today.year, today.month - 1);
  if (!document) why = LoadFailure::kOutOfMemory;
  std::FILE* f = document ? std::fopen(path, "rb") : nullptr;
  static char buffer[1 << 16];
  if (f) std::setvbuf(f, buffer, _IOFBF, sizeof buffer);
  bool ok = f && ReadCalendar(f, document, progress, &why);
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
  z_stream z{};
  if (deflateInit(&z, level) != Z_OK) return false;
  BlockLock lock(block);
  z.next_in = lock.bytes();
  z.avail_in = *inOutSize;
  unsigned char out[kChunk];
  uint32_t written = 0;
  bool ok = lock || *inOutSize == 0;
  for (int flush = Z_NO_FLUSH; ok;) {
    z.next_out = out;
    z.avail_out = kChunk;
    int result = deflate(&z, flush);
    uint32_t produced = kChunk - z.avail_out;
    if (result == Z_STREAM_ERROR || !WriteAll(file, out, produced)) ok = false;
    written += produced;
    if (result == Z_STREAM_END) break;
    if (flush == Z_NO_FLUSH && z.avail_in == 0) flush = Z_FINISH;
  }
  if (deflateEnd(&z) != Z_OK) ok = false;
  *inOutSize = written;
  return ok;
}

BlockHandle InflateBlockFromFile(std::FILE* file, uint32_t* inOutSize, uint32_t expectedSize, bool* outOfMemory) {
  if (expectedSize == 0 || expectedSize > kMaxPictureBytes) return 0;
  BlockHandle block = GlobalBlockAlloc(expectedSize);
  if (!block) {
    if (outOfMemory) *outOfMemory = true;
    return 0;
  }
  uint8_t* data = static_cast<uint8_t*>(GlobalBlockLock(block));
  // Output goes straight into the block; once it is full, one spare byte
  // catches a stream that would write past the stated size.
  enum { kStart, kInBlock, kSpare } window = kStart;
  unsigned char spare;
  auto room = [&](z_stream* z) {
    if (window == kStart) {
      window = kInBlock;
      z->next_out = data;
      z->avail_out = expectedSize;
    } else if (z->avail_out == 0) {
      if (window == kSpare) return false;
      window = kSpare;
      z->next_out = &spare;
      z->avail_out = 1;
    }
    return true;
  };
  auto took = [&](uInt produced) { return !(window == kSpare && produced > 0); };
  uint32_t produced = 0;
  bool ok = InflateStream(file, *inOutSize, &produced, room, took);
  GlobalBlockUnlock(block);
  if (!ok) {
    GlobalBlockFree(block);
    return 0;
  }
  *inOutSize = produced;
  return block;
}

BlockHandle InflateBlockFromFileGrowing(std::FILE* file, uint32_t* inOutSize, uint32_t limit, bool* outOfMemory) {
  BlockHandle block = 0;
  uint32_t size = 0;
  unsigned char out[kChunk];
  auto room = [&](z_stream* z) {
    z->next_out = out;
    z->avail_out = kChunk;
    return true;
  };
  // The block is made at the first output and grows with each one.
  auto took = [&](uInt produced) {
    if (produced == 0) return true;
    if (static_cast<uint64_t>(size) + produced > std::min(limit, kMaxPictureBytes)) return false;
    if (!block ? !(block = GlobalBlockAlloc(produced)) : !GlobalBlockReAlloc(block, size + produced)) {
      if (outOfMemory) *outOfMemory = true;
      return false;
    }
    BlockLock lock(block);
    std::memcpy(lock.bytes() + size, out, produced);
    size += produced;
    return true;
  };
  uint32_t produced = 0;
  bool ok = InflateStream(file, *inOutSize, &produced, room, took);
  if (!ok || !block) {
    if (block) GlobalBlockFree(block);
    return 0;
  }
  *inOutSize = produced;
  return block;
}
