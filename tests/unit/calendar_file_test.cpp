#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "base/dib.h"
#include "bench/photo_calendar.h"
#include "calendar/calendar_file.h"
#include "calendar/event_list.h"
#include "calendar/picture_streams.h"
#include "config/settings.h"
#include "image_bytes.h"
#include "test_support.h"

namespace {

// Remembers what the file layer showed and answers its questions.
class RecordingProgress : public FileProgress {
 public:
  explicit RecordingProgress(bool answer = true) : answer_(answer) {}
  void Begin(const char* caption) override { log.push_back(std::string("begin ") + caption); }
  void Advance(int current, int total) override {
    log.push_back("bar " + std::to_string(current) + "/" + std::to_string(total));
  }
  void End() override { log.push_back("end"); }
  bool AskYesNo(const char* question) override {
    EXPECT_STREQ(question, kDamagedRecordQuestion);
    log.push_back("ask");
    ++questions;
    return answer_;
  }
  std::vector<std::string> log;
  int questions = 0;

 private:
  bool answer_;
};

uint32_t U32At(const std::string& bytes, size_t offset) {
  uint32_t v;
  std::memcpy(&v, bytes.data() + offset, 4);
  return v;
}
void PutU32(std::string* bytes, size_t offset, uint32_t v) { std::memcpy(&(*bytes)[offset], &v, 4); }

// Where each picture stream of a file lies: the cover's, then the months'
// (empty where a record carries none).
struct StreamSpan {
  size_t at = 0, length = 0;
};
std::vector<StreamSpan> StreamSpans(const std::string& bytes) {
  std::vector<StreamSpan> spans;
  size_t at = U32At(bytes, 4);
  spans.push_back({kHeaderSize, at - kHeaderSize});
  for (int month = 0; month < 12; at += U32At(bytes, at + 4), ++month)
    spans.push_back({at + kMonthPageSize, U32At(bytes, at + 4) - kMonthPageSize});
  return spans;
}
std::vector<std::string> Streams(const std::string& bytes) {
  std::vector<std::string> streams;
  for (StreamSpan s : StreamSpans(bytes)) streams.push_back(bytes.substr(s.at, s.length));
  return streams;
}

// A calendar (or none) freed when the test leaves its scope, so that the
// fixture's count of blocks left behind sees only what the file layer keeps.
class Doc {
 public:
  explicit Doc(CalendarDocument doc = 0) : doc_(doc) {}
  Doc(const Doc&) = delete;
  Doc& operator=(const Doc&) = delete;
  ~Doc() { reset(0); }
  void reset(CalendarDocument doc) {
    if (doc_) FreeCalendar(doc_);
    doc_ = doc;
  }
  operator CalendarDocument() const { return doc_; }

 private:
  CalendarDocument doc_;
};

class CalendarFileTest : public QuernalTest {
 protected:
  std::string path_ = dir_.File("Family Year.CLN");

  // What one test saved or opened says nothing to the next.
  void SetUp() override {
    QuernalTest::SetUp();
    ForgetPictureStreams();
  }

  // A calendar with a cover picture and pictures on the months given.
  CalendarDocument WithPictures(std::initializer_list<int> months) {
    CalendarDocument doc = CreateCalendar(2026, 3);
    CalendarHeader h;
    GetHeader(doc, &h);
    h.CoverPicture = MakePatternDib(64, 48, 24, 100);
    h.CoverPictureShowPicture = 1;
    std::strcpy(h.CoverTitle, "Cover \xE9t\xE9");
    PutHeader(doc, &h);
    for (int m : months) {
      MonthPage p;
      GetMonthPage(doc, m, &p);
      p.Picture = MakePatternDib(40 + m, 30, m % 2 ? 8 : 24, m);
      std::snprintf(p.LeftCaption, sizeof p.LeftCaption, "Left %d", m);
      PutMonthPage(doc, m, &p);
    }
    return doc;
  }
  // The bytes of a calendar saved with pictures on `months`.
  std::string SavedWith(std::initializer_list<int> months) {
    Doc doc(WithPictures(months));
    EXPECT_EQ(Save(doc, path_), 1);
    return ReadFile(path_);
  }

  int Save(CalendarDocument doc, const std::string& path) {
    SilentProgress progress;
    return SaveCalendar(&progress, path.c_str(), doc);
  }
  CalendarDocument Load(const std::string& path, bool answer = true, int* questions = nullptr) {
    RecordingProgress progress(answer);
    CalendarDocument doc = LoadCalendar(&progress, path.c_str());
    if (questions) *questions = progress.questions;
    return doc;
  }
  // `bytes` written over the calendar's file and opened.
  CalendarDocument LoadBytes(const std::string& bytes, bool answer = true, int* questions = nullptr) {
    WriteFile(path_, bytes);
    return Load(path_, answer, questions);
  }
  // `doc` saved and opened again.
  CalendarDocument Reopened(CalendarDocument doc) {
    EXPECT_EQ(Save(doc, path_), 1);
    return Load(path_);
  }
  MonthPage Page(CalendarDocument doc, int month) {
    MonthPage p;
    EXPECT_TRUE(GetMonthPage(doc, month, &p));
    return p;
  }
  // The cover's and the months' pictures of `back` hold the pixels of `doc`'s.
  void ExpectSamePictures(CalendarDocument doc, CalendarDocument back, std::initializer_list<int> months) {
    CalendarHeader h, hb;
    GetHeader(doc, &h);
    GetHeader(back, &hb);
    EXPECT_EQ(BlockBytes(hb.CoverPicture), BlockBytes(h.CoverPicture));
    for (int m : months) EXPECT_EQ(BlockBytes(Page(back, m).Picture), BlockBytes(Page(doc, m).Picture)) << m;
  }
};

}  // namespace

// A calendar opens again as it was saved, but no longer changed and with
// the events lists its pages name read from the program's folder; hidden
// pictures are not saved.
TEST_F(CalendarFileTest, CalendarsReloadFieldForFieldAndSaveAgainByteForByte) {
  Doc doc(CreateCalendar(2026, 10));
  CalendarHeader a, b;
  GetHeader(doc, &a);
  a.Changed = 1;
  PutHeader(doc, &a);
  MonthPage july = Page(doc, 6);
  std::strcpy(july.DaysName, "Family");
  PutMonthPage(doc, 6, &july);
  WriteFile(dir_.File("Family.CDF"), "JUL04 Picnic\n");
  Doc back(Reopened(doc));
  ASSERT_NE(back, 0u);
  std::string bytes = ReadFile(path_);
  EXPECT_EQ(bytes.size(), 70139u);
  EXPECT_EQ(bytes.substr(0, 4), "TRWK");
  EXPECT_EQ(bytes.substr(kHeaderSize + 11 * kMonthPageSize, 4), "PAGE");
  GetHeader(back, &b);
  EXPECT_EQ(b.Changed, 0);
  b.Changed = 1;
  EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
  for (int m = 0; m < 12; ++m) {
    MonthPage pa = Page(doc, m), pb = Page(back, m);
    if (m == 6) {
      char text[64];
      EXPECT_EQ(FindEvent(text, sizeof text, pb.Events, 6, 3), 1);
      EXPECT_STREQ(text, "Picnic");
      pb.Events = 0;
    }
    EXPECT_EQ(std::memcmp(&pa, &pb, sizeof pa), 0) << "month " << m;
  }

  doc.reset(WithPictures({0, 4, 5, 11}));
  MonthPage hidden = Page(doc, 4);
  hidden.PictureShowPicture = 0;
  PutMonthPage(doc, 4, &hidden);
  back.reset(Reopened(doc));
  ASSERT_NE(back, 0u);
  ExpectSamePictures(doc, back, {0, 5, 11});
  EXPECT_EQ(Page(back, 4).Picture, 0u);
  GetHeader(back, &b);
  EXPECT_STREQ(b.CoverTitle, "Cover \xE9t\xE9");
  EXPECT_EQ(b.CoverPictureShowPicture, 1);
  EXPECT_EQ(b.RecordSize, 1343u);
  for (int m : {0, 5, 11}) {
    MonthPage p = Page(doc, m), pb = Page(back, m);
    EXPECT_NE(pb.Picture, p.Picture);
    EXPECT_EQ(pb.RecordSize, 5733u);
    EXPECT_EQ(pb.PictureDataSize, GlobalBlockSize(p.Picture));
  }
  EXPECT_EQ(Page(back, 1).Picture, 0u);
  // Each record's size in the file counts its zlib stream; handles are written as flags.
  bytes = ReadFile(path_);
  EXPECT_EQ(U32At(bytes, 30), 1u);
  EXPECT_EQ(static_cast<uint8_t>(bytes[kHeaderSize]), 0x78);
  size_t at = U32At(bytes, 4);
  EXPECT_GT(at, kHeaderSize);
  for (int m = 0; m < 12; at += U32At(bytes, at + 4), ++m) {
    const bool pictured = m == 0 || m == 5 || m == 11;
    EXPECT_EQ(bytes.substr(at, 4), "PAGE") << m;
    EXPECT_EQ(U32At(bytes, at + 4) > kMonthPageSize, pictured) << m;
    EXPECT_EQ(U32At(bytes, at + offsetof(MonthPage, Picture)), pictured ? 1u : 0u) << m;
    EXPECT_EQ(U32At(bytes, at + offsetof(MonthPage, Events)), 0u) << m;
  }
  EXPECT_EQ(at, bytes.size());
  const std::string again = dir_.File("again.CLN");
  ASSERT_EQ(Save(back, again), 1);
  EXPECT_EQ(ReadFile(again), bytes);
}

TEST_F(CalendarFileTest, SavingShowsTheFileNameAndMovesForPictureMonthsOnly) {
  Doc doc(WithPictures({3, 7}));
  RecordingProgress saving;
  ASSERT_EQ(SaveCalendar(&saving, path_.c_str(), doc), 1);
  EXPECT_EQ(saving.log, (std::vector<std::string>{"begin Saving Family Year.CLN", "bar 4/12", "bar 8/12", "end"}));
  // What loading shows is checked with the damaged pictures' questions.
  // A save that fails closes the status window too.
  RecordingProgress failing;
  EXPECT_EQ(SaveCalendar(&failing, dir_.File("no such folder/x.CLN").c_str(), doc), 0);
  EXPECT_EQ(failing.log.back(), "end");
}

// A hidden cover picture keeps its flag in the header but no stream follows,
// so reopening finds the cover record damaged and goes on without it.
TEST_F(CalendarFileTest, AHiddenCoverPictureIsNotSaved) {
  Doc doc(WithPictures({}));
  CalendarHeader h;
  GetHeader(doc, &h);
  h.CoverPictureShowPicture = 0;
  PutHeader(doc, &h);
  ASSERT_EQ(Save(doc, path_), 1);
  EXPECT_EQ(U32At(ReadFile(path_), 4), kHeaderSize);
  int questions = 0;
  Doc back(Load(path_, true, &questions));
  ASSERT_NE(back, 0u);
  EXPECT_EQ(questions, 1);
  GetHeader(back, &h);
  EXPECT_EQ(h.CoverPicture, 0u);
  EXPECT_EQ(h.CoverPictureShowPicture, 0);
}


// A picture stream is inflated for as long as its record has bytes: one that
// lacks only its checksum, stops short where its record ends, or runs on past
// its stated size keeps its picture, and the next save writes it whole. Only a
// corrupt stream, a picture that is no Dib, or sizes no real file has are
// damaged records.
TEST_F(CalendarFileTest, PictureStreamsAreReadAsFarAsTheirRecordGoes) {
  Doc doc(WithPictures({1}));
  ASSERT_EQ(Save(doc, path_), 1);
  const std::string good = ReadFile(path_);
  const std::vector<uint8_t> pixels = BlockBytes(Page(doc, 1).Picture);
  const std::string dib(pixels.begin(), pixels.end()), z = image_bytes::Zlib(dib), corrupt = "\xFF\xFF\xFF\xFF";
  const uint32_t size = static_cast<uint32_t>(dib.size());
  const std::string half = image_bytes::Deflated({{dib.substr(0, size / 2), Z_FULL_FLUSH}});
  std::string flipped = z, wrongSum = z;
  flipped[40] ^= 0x55;
  wrongSum.back() ^= 1;

  enum Outcome { kKept, kFirstHalfKept, kAsks, kFails };  // kFails: the record after it is lost, no question
  struct Case {
    const char* what;
    std::string stream;
    uint32_t dataSize;
    Outcome outcome;
    uint32_t recordSize = 0;  // 0: the record and the stream
  };
  const Case cases[] = {
      {"without its Adler-32", z.substr(0, z.size() - 4), size, kKept},
      {"without its Adler-32 or its stated size", z.substr(0, z.size() - 4), 0, kKept},
      {"with a wrong Adler-32", wrongSum, size, kAsks},
      {"stopping short where its record ends", half, size, kFirstHalfKept},
      {"stopping short, its size not stated (a Dib shorter than its header)", half, 0, kAsks},
      {"running on past its stated size", image_bytes::Zlib(dib + std::string(3000, 'x')), size, kKept},
      {"running on past its stated size into corrupt data",
       image_bytes::Deflated({{dib + std::string(3000, 'x'), Z_FULL_FLUSH}}) + corrupt, size, kAsks},
      {"running on past its block by more than a mebibyte, corrupt only after that",
       image_bytes::Deflated({{dib + std::string(3 << 20, 'x'), Z_FULL_FLUSH}}) + corrupt, size, kKept},
      {"followed by other bytes inside its record", z + std::string(30, '\x5A'), size, kKept},
      {"with a flipped byte inside", flipped, size, kAsks},
      {"a stated size smaller than the picture", z, 100, kAsks},
      {"an absurd stated size", z, 0xFFFFFFF0u, kAsks},
      {"a stated size no stream of this length can fill", z, 400u << 20, kAsks},
      {"of something that is not a picture", image_bytes::Zlib(std::string(200, 'j')), 200, kAsks},
      {"a record size smaller than the record", z, size, kAsks, 100},
      {"a record size beyond the end of the file", z, size, kFails, 0x7FFFFFF0u},
  };
  const size_t feb = U32At(good, 4) + kMonthPageSize;
  const std::string second = dir_.File("second.CLN");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::string bytes = good;
    bytes.replace(feb + kMonthPageSize, U32At(good, feb + 4) - kMonthPageSize, c.stream);
    PutU32(&bytes, feb + 4, c.recordSize ? c.recordSize : kMonthPageSize + static_cast<uint32_t>(c.stream.size()));
    PutU32(&bytes, feb + offsetof(MonthPage, PictureDataSize), c.dataSize);
    int questions = 0;
    Doc back(LoadBytes(bytes, false, &questions));
    EXPECT_EQ(questions, c.outcome == kAsks ? 1 : 0);
    EXPECT_EQ(back != 0, c.outcome == kKept || c.outcome == kFirstHalfKept);
    if (c.outcome == kAsks) {
      back.reset(Load(path_, true, &questions));
      if (back) {  // unless the next record is not where this one says it ends
        EXPECT_EQ(Page(back, 1).Picture, 0u);
        EXPECT_EQ(Page(back, 1).PictureShowPicture, 0);
      }
    }
    if (!back || c.outcome == kAsks) continue;
    std::vector<uint8_t> expected = pixels;
    if (c.outcome == kFirstHalfKept) std::fill(expected.begin() + size / 2, expected.end(), 0);
    EXPECT_EQ(BlockBytes(Page(back, 1).Picture), expected);
    EXPECT_EQ(Page(back, 1).PictureShowPicture, 1);
    // The cover's stream is copied; February's is written anew, whole.
    ForgetPictureStreams(second.c_str());
    ASSERT_EQ(Save(back, second), 1);
    EXPECT_EQ(LastSaveStreamCounts().copied, 1);
    EXPECT_EQ(LastSaveStreamCounts().compressed, 1);
  }
}

TEST_F(CalendarFileTest, UnreadableFilesGiveNoCalendarAndLeakNothing) {
  const std::string good = SavedWith({});
  EXPECT_EQ(Load(dir_.File("absent.CLN")), 0u);
  std::string magic = good;
  magic[0] = 'X';
  const std::pair<const char*, std::string> files[] = {
      {"wrong magic", magic},
      {"short header", good.substr(0, 1000)},
      {"the last page cut short", good.substr(0, good.size() - 100)},
  };
  for (const auto& [what, bytes] : files) EXPECT_EQ(LoadBytes(bytes), 0u) << what;
  // The fixture checks that none of these left a block behind.
}

// Sound files that no save of this program writes load without a question:
// texts without their zero are cut, and the reader seeks to the end each
// record states.
TEST_F(CalendarFileTest, TextsWithoutTheirZeroAreCutAndRecordsReadToTheirStatedEnd) {
  std::string bytes = SavedWith({});
  const size_t january = U32At(bytes, 4), march = january + 2 * kMonthPageSize;
  std::memset(&bytes[january + offsetof(MonthPage, DaysName)], 'N', kFontNameSize);
  std::memset(&bytes[offsetof(CalendarHeader, CoverTitle)], 'T', kFontNameSize);
  std::memset(&bytes[january + offsetof(MonthPage, RightCaption)], 'R', kCaptionSize);
  // Thirty bytes of something unknown after March's record, which says so.
  PutU32(&bytes, march + 4, kMonthPageSize + 30);
  bytes.insert(march + kMonthPageSize, std::string(30, '\x5A'));
  int questions = 0;
  Doc back(LoadBytes(bytes, true, &questions));
  ASSERT_NE(back, 0u);
  EXPECT_EQ(questions, 0);
  MonthPage p = Page(back, 0);
  EXPECT_EQ(std::strlen(p.DaysName), kFontNameSize - 1u);
  EXPECT_EQ(std::strlen(p.RightCaption), kCaptionSize - 1u);
  CalendarHeader h;
  GetHeader(back, &h);
  EXPECT_EQ(std::strlen(h.CoverTitle), kFontNameSize - 1u);
  EXPECT_EQ(Page(back, 3).RecordSize, kMonthPageSize);
  EXPECT_EQ(Page(back, 11).DateFontSize, 50);
}

TEST_F(CalendarFileTest, EveryStreamIsWhatZlibWritesAtTheLevelSet) {
  // Pictures of every kind and size on all thirteen pages, so that the
  // workers finish out of order.
  Doc doc(CreateCalendar(2026, 0));
  CalendarHeader h;
  GetHeader(doc, &h);
  h.CoverPicture = PhotoLikePicture(320, 240, 13);
  h.CoverPictureShowPicture = 1;
  PutHeader(doc, &h);
  const int bits[] = {1, 4, 8, 24};
  for (int m = 0; m < 12; ++m) {
    MonthPage p = Page(doc, m);
    p.Picture = m % 3 ? MakePatternDib(90 + m, 70, bits[m % 4], m) : PhotoLikePicture(400 - 30 * m, 150, m);
    PutMonthPage(doc, m, &p);
  }
  for (int level : {1, 2, 6, 9}) {
    SCOPED_TRACE(level);
    Settings.ImageCompression = level;
    ASSERT_EQ(Save(doc, path_), 1);
    EXPECT_EQ(LastSaveStreamCounts().compressed, 13);
    const std::vector<std::string> streams = Streams(ReadFile(path_));
    for (int page = 0; page < 13; ++page) {
      BlockHandle picture = page ? Page(doc, page - 1).Picture : h.CoverPicture;
      const std::vector<uint8_t> pixels = BlockBytes(picture);
      EXPECT_EQ(streams[page], image_bytes::Zlib(std::string(pixels.begin(), pixels.end()), level)) << "page " << page;
    }
  }
}

namespace {
// The page editor's way: a deep copy of May's record with a new caption and a
// new block of the same pixels takes the record's place.
void CaptionOnACopy(CalendarDocument doc, const std::string&) {
  MonthPage old, page;
  GetMonthPage(doc, 5, &old);
  page = old;
  page.Picture = DuplicateBlock(old.Picture);
  std::strcpy(page.LeftCaption, "Changed");
  GlobalBlockFree(old.Picture);
  PutMonthPage(doc, 5, &page);
}
}  // namespace

TEST_F(CalendarFileTest, UnchangedPicturesAreCopiedFromTheFileTheyCameFrom) {
  namespace fs = std::filesystem;
  struct Case {
    const char* what;
    int savedAt;    // the level of the first file's streams
    bool reopened;  // the calendar saved again is the file read back, not the one that wrote it
    void (*change)(CalendarDocument doc, const std::string& first);
    int saveAt;
    int copied;  // of the four pictures
  };
  const Case cases[] = {
      {"a caption changed on a copy of the page", 6, true, CaptionOnACopy, 6, 4},
      {"the same in the calendar that wrote the file", 6, false, CaptionOnACopy, 6, 4},
      {"a level of the same header field, for a stream read", 3, true, nullptr, 4, 4},
      {"a level of the same header field, for a stream written", 3, false, nullptr, 4, 0},
      {"another level", 6, true, nullptr, 9, 0},
      {"the last byte of a picture",
       6, true, [](CalendarDocument doc, const std::string&) {
         MonthPage p;
         GetMonthPage(doc, 5, &p);
         BlockLock(p.Picture).bytes()[GlobalBlockSize(p.Picture) - 1] ^= 1;
       }, 6, 3},
      {"the file's time",
       6, true, [](CalendarDocument, const std::string& first) {
         fs::last_write_time(first, fs::last_write_time(first) - std::chrono::hours(1));
       }, 6, 0},
      {"the file's size, its time put back",
       6, true, [](CalendarDocument, const std::string& first) {
         const auto time = fs::last_write_time(first);
         std::ofstream(first, std::ios::app) << 'x';
         fs::last_write_time(first, time);
       }, 6, 0},
      {"a byte in the middle of May's stream, in place, the file's time put back",
       6, true, [](CalendarDocument, const std::string& first) {
         const auto time = fs::last_write_time(first);
         const StreamSpan may = StreamSpans(ReadFile(first))[6];
         std::fstream file(first, std::ios::in | std::ios::out | std::ios::binary);
         file.seekg(static_cast<std::streamoff>(may.at + may.length / 2));
         const char byte = static_cast<char>(file.get() ^ 0x10);
         file.seekp(static_cast<std::streamoff>(may.at + may.length / 2));
         file.put(byte);
         file.close();
         fs::last_write_time(first, time);
       }, 6, 3},
  };
  const std::string second = dir_.File("second.CLN");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ForgetPictureStreams();
    Settings.ImageCompression = c.savedAt;
    Doc doc(WithPictures({0, 5, 11}));
    ASSERT_EQ(Save(doc, path_), 1);
    if (c.reopened) {
      doc.reset(Load(path_));
      ASSERT_NE(doc, 0u);
    }
    if (c.change) c.change(doc, path_);
    Settings.ImageCompression = c.saveAt;
    ASSERT_EQ(Save(doc, second), 1);
    EXPECT_EQ(LastSaveStreamCounts().copied, c.copied);
    EXPECT_EQ(LastSaveStreamCounts().compressed, 4 - c.copied);
    if (c.copied == 4) {
      EXPECT_EQ(Streams(ReadFile(second)), Streams(ReadFile(path_)));
    }
    Doc back(Load(second));
    ASSERT_NE(back, 0u);
    ExpectSamePictures(doc, back, {0, 5, 11});
  }

  // Saving over the very file the streams are copied from.
  const std::string before = ReadFile(second);
  Doc doc(Load(second));
  ASSERT_EQ(Save(doc, second), 1);
  EXPECT_EQ(LastSaveStreamCounts().copied, 4);
  EXPECT_EQ(ReadFile(second), before);
}

TEST_F(CalendarFileTest, DamagedPicturesAskInMonthOrderWhileTheOthersInflate) {
  const std::string good = SavedWith({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  const std::vector<StreamSpan> spans = StreamSpans(good);  // by page: 0 the cover, 1.. the months
  struct Case {
    const char* what;
    std::set<int> damaged;  // pages whose stream has a flipped byte, or ends the file
    int broken;             // a month page whose record is gone or broken, or 0
    bool cut;               // the file ends inside the damaged page's stream
    bool answer;
  };
  const Case cases[] = {
      {"two damaged pictures, Yes", {3, 10}, 0, false, true},
      {"two damaged pictures, No", {3, 10}, 0, false, false},
      {"a damaged cover, No", {0}, 0, false, false},
      {"a damaged picture before a broken record", {2}, 11, false, true},
      {"the file ends inside July's picture", {7}, 8, true, true},
      {"the file ends inside December's picture, Yes keeps the rest", {12}, 0, true, true},
      {"the file ends inside December's picture, No", {12}, 0, true, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::string bytes = good;
    for (int page : c.damaged) bytes[spans[page].at + spans[page].length / 2] ^= 0x55;
    if (c.broken && !c.cut) bytes[spans[c.broken].at - kMonthPageSize] = 'p';
    if (c.cut) bytes.resize(spans[*c.damaged.begin()].at + 100);
    WriteFile(path_, bytes);
    // As when the pictures were read one after the other.
    std::vector<std::string> expected = {"begin Opening Family Year.CLN", "bar 1/12"};
    bool loads = true;
    for (int page = 0; page < 13 && loads; ++page) {
      if (c.broken && page == c.broken) loads = false;
      else if (c.damaged.count(page)) expected.push_back("ask"), loads = c.answer;
      if (loads && page > 0) expected.push_back("bar " + std::to_string(page) + "/12");
    }
    expected.push_back("end");

    RecordingProgress progress(c.answer);
    Doc back(LoadCalendar(&progress, path_.c_str()));
    EXPECT_EQ(progress.log, expected);
    ASSERT_EQ(back != 0, loads);
    for (int m = 0; back && m < 12; ++m) {
      EXPECT_EQ(Page(back, m).Picture == 0, c.damaged.count(m + 1) > 0) << m;
      EXPECT_EQ(Page(back, m).PictureShowPicture, c.damaged.count(m + 1) ? 0 : 1) << m;
    }
  }
}

// What the import keeps (4000 pixels on the longer side) always opens again,
// in the 32-bit program too, and what no picture may be does not; what a save
// would write that the loader could not take back is refused before the old
// file is touched.
TEST_F(CalendarFileTest, SavesKeepToWhatTheLoaderTakesBack) {
  uint32_t size;
  const std::string stream = BlankPictureStream(4000, 4000, &size);
  int questions = 0;
  {
    Doc thirteen(LoadBytes(CalendarFileWithPictures(13, stream, size), false, &questions));
    ASSERT_NE(thirteen, 0u);
    EXPECT_EQ(questions, 0);
    for (int m = 0; m < 12; ++m) EXPECT_EQ(GlobalBlockSize(Page(thirteen, m).Picture), size) << m;
    EXPECT_TRUE(PicturesFitOneFile(thirteen));
  }
  // More than 512 MiB of black pixels in half a megabyte, its size unstated:
  // more than any picture may be, a damaged record.
  {
    Doc over(LoadBytes(CalendarFileWithPictures(1, BlankPictureStream(16384, 11000, &size), 0), true, &questions));
    ASSERT_NE(over, 0u);
    EXPECT_EQ(questions, 1);
  }
  const std::string before = ReadFile(path_);
  // Untouched blocks cost no memory: one picture over its limit, then four
  // that are each allowed but together too many.
  const struct {
    int pictures;
    uint32_t bytes;
  } cases[] = {{1, kMaxPictureBytes + 1}, {4, 400u << 20}};
  for (const auto& c : cases) {
    Doc doc(CreateCalendar(2027, 0));
    for (int m = 0; m < c.pictures; ++m) {
      MonthPage p = Page(doc, m);
      p.Picture = GlobalBlockAlloc(c.bytes);
      ASSERT_NE(p.Picture, 0u);
      PutMonthPage(doc, m, &p);
    }
    uint64_t total = 0;
    EXPECT_FALSE(PicturesFitOneFile(doc, &total)) << c.pictures;
    EXPECT_EQ(total, uint64_t{c.bytes} * c.pictures);
    EXPECT_EQ(Save(doc, path_), 0) << c.pictures;
    EXPECT_TRUE(ReadFile(path_) == before) << c.pictures;
  }
}

TEST(BlockChecksumTest, AnyChangedByteOrLengthGivesAnotherSum) {
  std::vector<uint8_t> bytes(1003);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7);
  const uint64_t sum = ChecksumOf(bytes.data(), bytes.size());
  // Taken in as the block fills, in pieces of any length, the sum is the same.
  BlockChecksum pieces;
  for (size_t upTo = 0; upTo < bytes.size(); upTo += 37) pieces.Absorb(bytes.data(), upTo);
  EXPECT_EQ(pieces.Finish(bytes.data(), bytes.size()), sum);

  std::set<uint64_t> seen = {sum};
  // Single bytes at the ends of words, lanes and the tail past the last whole
  // 32 bytes; and the top bits of two words of one lane, which multiplying
  // alone would let cancel out.
  const std::vector<std::vector<size_t>> changes = {{0}, {7}, {8}, {31}, {32}, {500}, {999}, {1002}, {7, 39}};
  for (const auto& change : changes) {
    for (size_t at : change) bytes[at] ^= 0x80;
    EXPECT_TRUE(seen.insert(ChecksumOf(bytes.data(), bytes.size())).second) << change[0];
    for (size_t at : change) bytes[at] ^= 0x80;
  }
  // Zero bytes count too.
  const std::vector<uint8_t> zeros(64);
  for (size_t n = 0; n <= zeros.size(); ++n) EXPECT_TRUE(seen.insert(ChecksumOf(zeros.data(), n)).second) << n;
}
