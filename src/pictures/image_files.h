// Pictures from image files: the table of the six formats the program reads
// and the two operations built on it. Every reader turns a file into a Dib
// that keeps the file's kind: 1-, 4- and 8-bit files stay palette pictures
// with their own colours (grey-scale files get a grey table), true-colour
// files become 24-bit. Damaged or hostile files give 0, never a crash or an
// allocation beyond kMaxPictureBytes.
#pragma once
#include <cstdint>
#include <string>

#include "base/dib.h"
#include "base/global_block.h"

constexpr int kImageFormatCount = 6;

// The format index 0..5 (jpg, bmp, gif, pcx, tga, png) of a path, from the
// extension after the last dot of the file name, compared without regard to
// case; -1 when none matches.
int FindImageFormat(const char* path);
// Copies the extension of format `index` ("jpg") into `buffer`; returns 6, or
// -1 for an index of 6 or more.
int ImageFormatExtension(int index, char* buffer, int size);
// Writes "%s files" of the extension ("jpg files") into `buffer`; returns 6,
// or -1 for an index of 6 or more.
int ImageFormatFilterName(int index, char* buffer, int size);

// The format's name as people know it ("JPEG"), or null for an index of 6
// or more.
const char* ImageFormatName(int index);
// The picture-open dialog's filter list: "JPEG files" "*.jpg" and so on for
// every format in index order, then "All files" with all the extensions;
// every text ends in a zero, and the string's own zero ends the list.
std::string ImageFormatDialogFilter();

// Reads the file's own header, without decoding pixels. Every output may be
// null. `colourTable` (256 RGB triples, 768 bytes) is cleared and filled only
// for 8 bits per pixel or fewer. The bit count is that of the Dib
// ReadImageFile would make. 1 on success, 0 for an unknown format or a file
// that cannot be read.
int GetImageFileInformation(const char* path, int32_t* width, int32_t* height, uint16_t* bitCount,
                            uint8_t* colourTable);
// The file as a new Dib, imported as ImportPictureFile imports it for a
// white page (upright, in sRGB, reduced to kImportLongestSide), or 0. When
// `bitCount` is given it receives the bit count GetImageFileInformation
// reports for the file.
BlockHandle ReadImageFile(const char* path, uint16_t* bitCount);

// Writes a Dib as a BMP file (file header, then the block as it stands), the
// form in which pictures go to a paint program and back. False on failure,
// leaving no partial file.
bool WriteBmpFile(const char* path, BlockHandle dib);
