// A picture file becoming a page's picture, whoever asks (Select..., a file
// dropped on the window, quernal-cli): imported for the page's background,
// then the palette warning, or what went wrong, told to the caller through
// a small interface. The Win32 program answers with message boxes and
// Windows Imaging Component, the command-line tool with lines on stderr.
#pragma once
#include "base/global_block.h"
#include "pictures/picture_import.h"

class PagePictureHost {
 public:
  virtual ~PagePictureHost() = default;
  // The file could not be had as a picture; `picture` says why.
  virtual void Failed(const char* path, const ImportedPicture& picture) = 0;
  // A monochrome or palette picture was read: warn the user.
  virtual void WarnAboutPalette(const char* path) = 0;
  // A file read by its content that none of the program's readers takes:
  // true with its pixels when another decoder reads it.
  virtual bool DecodeOther(const char* path, DecodedPixels* pixels) {
    (void)path, (void)pixels;
    return false;
  }
};

// The picture in `path` imported as `request` asks, or 0 after
// host.Failed(); a palette picture brings host.WarnAboutPalette() first.
BlockHandle ReadPagePicture(const char* path, const ImportRequest& request, PagePictureHost& host);
