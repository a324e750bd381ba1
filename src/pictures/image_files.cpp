#include "pictures/image_files.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "base/dib.h"
#include "base/replace_file.h"
#include "base/text.h"
#include "pictures/byte_source.h"
#include "pictures/format_readers.h"
#include "pictures/picture_import.h"

namespace {

struct ImageFormat {
  const char* extension;
  const char* name;  // as the open dialog and the texts name it
  bool (*readHeader)(ByteSource& file, ImageHeader* header);
  BlockHandle (*readPicture)(const uint8_t* data, size_t size, PictureDecode* decode);
};

// The order is the format index, which the open dialog's filters follow.
const ImageFormat kImageFormats[kImageFormatCount] = {
    {"jpg", "JPEG", ReadJpegHeader, ReadJpegPicture}, {"bmp", "BMP", ReadBmpHeader, ReadBmpPicture},
    {"gif", "GIF", ReadGifHeader, ReadGifPicture},    {"pcx", "PCX", ReadPcxHeader, ReadPcxPicture},
    {"tga", "TGA", ReadTgaHeader, ReadTgaPicture},    {"png", "PNG", ReadPngHeader, ReadPngPicture},
};

bool IsFormatIndex(int index) { return index >= 0 && index < kImageFormatCount; }

constexpr uint32_t kBmpFileHeaderSize = 14;

// BITMAPFILEHEADER, written field by field in file order (little-endian).
void PutBmpFileHeader(uint8_t* out, uint32_t fileSize, uint32_t bitsOffset) {
  auto put32 = [](uint8_t* p, uint32_t v) {
    for (int i = 0; i < 4; ++i) p[i] = static_cast<uint8_t>(v >> (8 * i));
  };
  std::memset(out, 0, kBmpFileHeaderSize);
  out[0] = 'B';
  out[1] = 'M';
  put32(out + 2, fileSize);
  put32(out + 10, bitsOffset);
}

bool WriteAll(std::FILE* f, const void* data, size_t size) { return std::fwrite(data, 1, size, f) == size; }

}  // namespace

int FindImageFormat(const char* path) {
  if (!path) return -1;
  const char* dot = std::strrchr(FileNamePart(path), '.');
  if (!dot) return -1;
  for (int i = 0; i < kImageFormatCount; ++i) {
    const char* extension = kImageFormats[i].extension;
    if (CompareNoCase(dot + 1, extension, std::strlen(extension) + 1) == 0) return i;
  }
  return -1;
}

int ImageFormatExtension(int index, char* buffer, int size) {
  if (!IsFormatIndex(index)) return -1;
  if (buffer && size > 0) CopyText(buffer, static_cast<size_t>(size), kImageFormats[index].extension);
  return kImageFormatCount;
}

int ImageFormatFilterName(int index, char* buffer, int size) {
  if (!IsFormatIndex(index)) return -1;
  if (buffer && size > 0) std::snprintf(buffer, static_cast<size_t>(size), "%s files", kImageFormats[index].extension);
  return kImageFormatCount;
}

const char* ImageFormatName(int index) { return IsFormatIndex(index) ? kImageFormats[index].name : nullptr; }

std::string ImageFormatDialogFilter() {
  using namespace std::string_literals;
  std::string filter, all;
  for (const ImageFormat& format : kImageFormats) {
    filter += format.name + " files\0*."s + format.extension + '\0';
    all += (all.empty() ? "*."s : ";*."s) + format.extension;
  }
  return filter + "All files\0"s + all + '\0';
}

int GetImageFileInformation(const char* path, int32_t* width, int32_t* height, uint16_t* bitCount,
                            uint8_t* colourTable) {
  int index = FindImageFormat(path);
  if (index < 0) return 0;
  FileSource file(path);
  ImageHeader header;
  if (!file.ok() || !kImageFormats[index].readHeader(file, &header)) return 0;
  if (width) *width = header.width;
  if (height) *height = header.height;
  if (bitCount) *bitCount = header.bitCount;
  if (colourTable && header.bitCount <= 8) {
    std::memset(colourTable, 0, 256 * 3);
    for (uint32_t i = 0; i < DibColourTableEntries(header.bitCount); ++i) {
      colourTable[3 * i] = header.colours[i].rgbRed;
      colourTable[3 * i + 1] = header.colours[i].rgbGreen;
      colourTable[3 * i + 2] = header.colours[i].rgbBlue;
    }
  }
  return 1;
}

bool ReadFormatHeader(int index, ByteSource& file, ImageHeader* header) {
  return IsFormatIndex(index) && kImageFormats[index].readHeader(file, header);
}

BlockHandle ReadFormatPicture(int index, const uint8_t* data, size_t size, PictureDecode* decode) {
  return IsFormatIndex(index) ? kImageFormats[index].readPicture(data, size, decode) : 0;
}

BlockHandle ReadImageFile(const char* path, uint16_t* bitCount) {
  BlockHandle dib = ImportPictureFile(path, ImportRequest{}).dib;
  uint16_t bits;
  if (dib && bitCount && GetImageFileInformation(path, nullptr, nullptr, &bits, nullptr)) *bitCount = bits;
  return dib;
}

bool WriteBmpFile(const char* path, BlockHandle dib) {
  if (!path || !*path || !DibBlockIsValid(dib)) return false;
  uint32_t blockSize = GlobalBlockSize(dib);
  if (blockSize > UINT32_MAX - kBmpFileHeaderSize) return false;
  BlockLock lock(dib);
  uint8_t fileHeader[kBmpFileHeaderSize];
  PutBmpFileHeader(fileHeader, kBmpFileHeaderSize + blockSize,
                   kBmpFileHeaderSize + DibBitsOffset(*lock.as<BitmapInfoHeader>()));

  ReplacingFile out(path, false);
  return out.file() && WriteAll(out.file(), fileHeader, sizeof fileHeader) &&
         WriteAll(out.file(), lock.bytes(), blockSize) && out.Commit();
}
