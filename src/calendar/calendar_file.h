// The calendar file (.CLN): the header record, the cover picture's zlib
// stream, then each month record followed by its picture's zlib stream.
#pragma once
#include <cstdint>
#include <cstdio>

#include "base/dib.h"
#include "base/global_block.h"
#include "calendar/calendar_model.h"
#include "calendar/file_progress.h"

constexpr const char* kDamagedRecordQuestion =
    "There has been an error reading one of the records in your file. Click on Yes to proceed, or No to abort.";
constexpr const char* kSaveFailedMessage =
    "There has been an error writing this file. Please check the available space on the destination drive.";
constexpr const char* kLoadFailedMessage = "There has been an error reading this file. It might be corrupted.";
constexpr const char* kMemoryFailedMessage = "There has been an error allocating memory.";

// The most all pictures of one calendar may hold together (the 32-bit program
// could not hold more anyway). Pictures past it are damaged records, so a
// small file of well-made huge pictures cannot demand many gigabytes.
constexpr uint32_t kMaxDocumentPictureBytes = 3u << 29;  // 1.5 GiB

// True when the loader would take every picture of `document` back: each at
// most kMaxPictureBytes, all together at most kMaxDocumentPictureBytes.
// `total` (when given) receives the pictures' bytes.
bool PicturesFitOneFile(CalendarDocument document, uint64_t* total = nullptr);

// Writes `document` to `path` at the ImageCompression level, compressing
// pictures on all cores; a picture whose stream lies unchanged in a file it
// was loaded from or saved to (at the same level) is copied from there. The file is
// written beside the target under a name of its own and replaces it only when
// complete and on the disk, so on failure (0) the previous file is untouched.
// A calendar whose pictures do not fit one file is not written at all.
int SaveCalendar(FileProgress* progress, const char* path, CalendarDocument document);
// How the last save made its picture streams: copied from the file a
// picture came from (unchanged since), or compressed.
struct StreamCounts {
  int copied = 0;
  int compressed = 0;
};
StreamCounts LastSaveStreamCounts();

// Why a load gave no calendar: the file could not be read (or the user said
// No to a damaged record), or memory ran out. Running out of memory is never
// taken for damage: the load stops without asking, so nothing is dropped.
enum class LoadFailure { kNone, kUnreadable, kOutOfMemory };
// Reads a calendar; 0 when the file cannot be read, with the reason in
// `failure` when given. Event lists are loaded from the program's folder.
// Pictures inflate on all cores; the questions and the bar come in month
// order as if they were read one after the other.
CalendarDocument LoadCalendar(FileProgress* progress, const char* path, LoadFailure* failure = nullptr);

// Compresses the first *inOutSize bytes of `block` into `file` as one zlib
// stream; *inOutSize receives the number of bytes written.
bool CompressBlockToFile(std::FILE* file, BlockHandle block, uint32_t* inOutSize, int level);
// Inflates one zlib stream of *inOutSize compressed bytes from `file` into a
// new zero-filled block of exactly `expectedSize` bytes; *inOutSize receives
// the bytes the stream put in the block. The stream is read while compressed
// bytes remain, so one that lacks its Adler-32 or stops short gives what it
// holds (the rest of the block stays zero), and output past `expectedSize`
// is dropped. 0 when the stream is corrupt or the file ends before
// *inOutSize bytes. When the block cannot be allocated, `outOfMemory` (if
// given) is set.
BlockHandle InflateBlockFromFile(std::FILE* file, uint32_t* inOutSize, uint32_t expectedSize,
                                 bool* outOfMemory = nullptr);
// The same when the size is not known; the block grows with the output, up to
// `limit` bytes (more is a damaged stream). A stream that gives no output
// gives no block.
BlockHandle InflateBlockFromFileGrowing(std::FILE* file, uint32_t* inOutSize, uint32_t limit = kMaxPictureBytes,
                                        bool* outOfMemory = nullptr);
