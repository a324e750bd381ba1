#include "test_support.h"

#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "base/dib.h"
#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/calendar_file.h"
#include "config/settings.h"

namespace fs = std::filesystem;

TempDir::TempDir() {
  static std::mt19937 random(std::random_device{}());
  for (;;) {
    fs::path p = fs::temp_directory_path() / ("quernal-test-" + std::to_string(random()));
    std::error_code error;
    if (fs::create_directory(p, error)) {
      path_ = p.string();
      return;
    }
  }
}

TempDir::~TempDir() {
  std::error_code error;
  fs::remove_all(path_, error);
}

std::string TempDir::File(const std::string& name) const { return JoinPath(path_, name); }

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out << bytes;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool FileExists(const std::string& path) { return fs::exists(path); }

std::string AsTextFile(const std::string& text) {
#ifdef _WIN32
  std::string out;
  for (char c : text) out += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return out;
#else
  return text;
#endif
}

void QuernalTest::SetUp() {
  ResetSettings();
  CopyText(Settings.ApplicationPath, sizeof Settings.ApplicationPath, dir_.path().c_str());
  CalendarDate today{2026, 11, 21};
  SetTodayForTesting(&today);
  liveBlocks_ = GlobalBlockLiveCount();
}

void QuernalTest::TearDown() {
  SetTodayForTesting(nullptr);
  EXPECT_EQ(GlobalBlockLiveCount(), liveBlocks_) << "the test left memory blocks behind";
}

std::string SettingText(const char* key) {
  const SettingsRow* row = FindSettingsRow(key);
  if (!row) return "?";
  if (row->type & kSettingText) return static_cast<const char*>(row->variable);
  return std::to_string(*static_cast<const uint32_t*>(row->variable));
}

BlockHandle MakePatternDib(int width, int height, int bits, uint32_t seed) {
  BlockHandle dib = DibCreate(width, height, static_cast<uint16_t>(bits));
  BlockLock lock(dib);
  uint8_t* p = lock.bytes() + sizeof(BitmapInfoHeader);
  uint8_t* end = lock.bytes() + GlobalBlockSize(dib);
  std::mt19937 random(seed);
  for (size_t i = 0; p < end; ++p, ++i) *p = static_cast<uint8_t>((i / 7) ^ (random() & 3));
  return dib;
}

std::vector<uint8_t> BlockBytes(BlockHandle block) {
  BlockLock lock(block);
  if (!lock) return {};
  return std::vector<uint8_t>(lock.bytes(), lock.bytes() + GlobalBlockSize(block));
}

std::string BlankPictureStream(int32_t width, int32_t height, uint32_t* dataSize) {
  BitmapInfoHeader h{};
  h.biSize = sizeof h;
  h.biWidth = width;
  h.biHeight = height;
  h.biPlanes = 1;
  h.biBitCount = 24;
  *dataSize = static_cast<uint32_t>(DibTotalSize(h));
  h.biSizeImage = *dataSize - static_cast<uint32_t>(sizeof h);
  // Streamed, so a picture of hundreds of megabytes never sits in memory.
  z_stream z{};
  deflateInit(&z, 9);
  std::string out;
  std::vector<unsigned char> zeros(1 << 20), buffer(1 << 16);
  auto feed = [&](const void* bytes, uInt size, int flush) {
    z.next_in = static_cast<Bytef*>(const_cast<void*>(bytes));
    z.avail_in = size;
    do {
      z.next_out = buffer.data();
      z.avail_out = static_cast<uInt>(buffer.size());
      deflate(&z, flush);
      out.append(reinterpret_cast<char*>(buffer.data()), buffer.size() - z.avail_out);
    } while (z.avail_out == 0);
  };
  feed(&h, sizeof h, Z_NO_FLUSH);
  for (uint64_t left = h.biSizeImage; left > 0;) {
    const uInt size = static_cast<uInt>(std::min<uint64_t>(left, zeros.size()));
    left -= size;
    feed(zeros.data(), size, left ? Z_NO_FLUSH : Z_FINISH);
  }
  deflateEnd(&z);
  return out;
}

std::string CalendarFileWithPictures(int count, const std::string& stream, uint32_t dataSize) {
  TempDir dir;
  const std::string path = dir.File("plain.CLN");
  CalendarDocument doc = CreateCalendar(2026, 0);
  SilentProgress progress;
  SaveCalendar(&progress, path.c_str(), doc);
  FreeCalendar(doc);
  const std::string plain = ReadFile(path);
  auto withStream = [&](size_t at, size_t size, uint32_t pictureField, uint32_t dataSizeField) {
    std::string record = plain.substr(at, size);
    const uint32_t one = 1, length = static_cast<uint32_t>(size + stream.size());
    std::memcpy(&record[4], &length, 4);
    std::memcpy(&record[pictureField], &one, 4);
    std::memcpy(&record[dataSizeField], &dataSize, 4);
    return record + stream;
  };
  // The cover first, then the months in order.
  std::string bytes = count > 0 ? withStream(0, kHeaderSize, offsetof(CalendarHeader, CoverPicture),
                                             offsetof(CalendarHeader, CoverPictureDataSize))
                                : plain.substr(0, kHeaderSize);
  for (int month = 0; month < 12; ++month) {
    const size_t at = kHeaderSize + month * kMonthPageSize;
    bytes += month + 1 < count ? withStream(at, kMonthPageSize, offsetof(MonthPage, Picture),
                                            offsetof(MonthPage, PictureDataSize))
                               : plain.substr(at, kMonthPageSize);
  }
  return bytes;
}

// Every 32-bit word of the record's body set to `value`, then the few fields
// that make it a record put back; texts keep whatever the words made of them.
namespace {
template <class Record>
void Fill(Record* record, uint32_t value) {
  uint8_t* bytes = reinterpret_cast<uint8_t*>(record);
  for (size_t at = 8; at + 4 <= sizeof *record; at += 4) std::memcpy(bytes + at, &value, 4);
}
}  // namespace

CalendarDocument HostileCalendar(uint32_t value, int32_t year) {
  CalendarDocument doc = CreateCalendar(2026, 0);
  CalendarHeader h;
  GetHeader(doc, &h);
  Fill(&h, value);
  h.Year = year;
  h.UseCurrentYear = 0;
  h.CurrentPage = 0;
  h.CoverPicture = MakePatternDib(40, 30, 24, 1);
  h.CoverPictureShowPicture = 1;
  PutHeader(doc, &h);
  for (int month = 0; month < 12; ++month) {
    MonthPage p;
    GetMonthPage(doc, month, &p);
    FreeMonthPage(&p);
    p.Magic = kPageMagic;
    p.RecordSize = kMonthPageSize;
    Fill(&p, value);
    p.Picture = MakePatternDib(40, 30, 8, month);
    p.Events = 0;
    p.PictureShowPicture = p.PictureDropShadow = 1;
    PutMonthPage(doc, month, &p);
  }
  return doc;
}

