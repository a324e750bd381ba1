// Windows Imaging Component decodes; this file asks it for one frame in one
// pixel format and turns its answers into DecodedPixels. Every file is
// hostile until proven otherwise: the size is checked before any pixel is
// decoded, and every failing call becomes an ImportError.
#include "pictures/wic_picture_win32.h"

#include <windows.h>
#include <propidl.h>
#include <wincodec.h>
#include <wincodecsdk.h>

#include <climits>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "pictures/camera_formats.h"
#include "pictures/exif_orientation.h"

namespace {

// One COM interface, released when it goes.
template <class T>
class ComRef {
 public:
  ComRef() = default;
  ~ComRef() { Reset(); }
  ComRef(const ComRef&) = delete;
  ComRef& operator=(const ComRef&) = delete;
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  // For a call that hands out an interface.
  T** put() {
    Reset();
    return &p_;
  }

 private:
  void Reset() {
    if (p_) p_->Release();
    p_ = nullptr;
  }
  T* p_ = nullptr;
};

// COM on this thread for as long as the decoding takes. A thread that has
// COM already keeps it as it is (in whatever apartment); one that had none
// gets it and gives it back.
class ComApartment {
 public:
  ComApartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
  bool usable() const { return SUCCEEDED(result_) || result_ == RPC_E_CHANGED_MODE; }

 private:
  HRESULT result_;
};

// The HEIF decoder's own metadata (GUID_MetadataFormatHeif, which the
// MinGW import libraries lack) and its orientation property
// (WICHeifOrientation): the file's irot and imir boxes as an EXIF value.
constexpr GUID kMetadataFormatHeif = {0x817ef3e1, 0x1288, 0x45f4, {0xa8, 0x52, 0x26, 0x0d, 0x9e, 0x7c, 0xce, 0x83}};
constexpr ULONG kHeifOrientation = 1;

// The start of the file that is read first: enough to recognise the camera
// formats, and to hold a JPEG's APP0 and EXIF APP1 segments.
constexpr DWORD kHeadBytes = 1u << 17;
// The rows copied at once stay below this many bytes (CopyPixels counts its
// buffer in 32 bits).
constexpr uint64_t kBandBytes = 64u << 20;

DecodedPixels Failure(ImportError error, uint64_t filePixels = 0) {
  DecodedPixels pixels;
  pixels.error = error;
  pixels.filePixels = filePixels;
  return pixels;
}

bool IsOutOfMemory(HRESULT result) {
  return result == E_OUTOFMEMORY || result == HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY) ||
         result == HRESULT_FROM_WIN32(ERROR_OUTOFMEMORY);
}

// A failure once a codec has taken the file.
ImportError ErrorOf(HRESULT result) {
  if (IsOutOfMemory(result)) return ImportError::kOutOfMemory;
  if (result == WINCODEC_ERR_COMPONENTNOTFOUND || result == WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT ||
      result == WINCODEC_ERR_UNSUPPORTEDOPERATION || result == WINCODEC_ERR_UNSUPPORTEDVERSION ||
      result == WINCODEC_ERR_COMPONENTINITIALIZEFAILURE || result == E_NOTIMPL)
    return ImportError::kUnsupported;
  if (result == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) || result == HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND) ||
      result == HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED) || result == HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION))
    return ImportError::kUnreadableFile;
  return ImportError::kDamaged;
}

// The start of the file; false when it cannot be opened or read (a folder
// cannot be opened this way).
bool ReadHead(const char* path, std::vector<uint8_t>* head) {
  const HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  head->resize(kHeadBytes);
  DWORD got = 0;
  const BOOL read = ReadFile(file, head->data(), kHeadBytes, &got, nullptr);
  CloseHandle(file);
  head->resize(read ? got : 0);
  return read != FALSE;
}

std::wstring WideName(const char* path) {
  const int count = MultiByteToWideChar(CP_ACP, 0, path, -1, nullptr, 0);
  if (count <= 0) return std::wstring();
  std::wstring wide(static_cast<size_t>(count), L'\0');
  MultiByteToWideChar(CP_ACP, 0, path, -1, &wide[0], count);
  wide.resize(static_cast<size_t>(count) - 1);
  return wide;
}

// An orientation property's value, 1..8, or 0.
int OrientationValue(const PROPVARIANT& value) {
  long n = 0;
  switch (value.vt) {
    case VT_UI1: n = value.bVal; break;
    case VT_UI2: n = value.uiVal; break;
    case VT_UI4: n = value.ulVal <= 8 ? static_cast<long>(value.ulVal) : 0; break;
    case VT_I2: n = value.iVal; break;
    case VT_I4: n = value.lVal; break;
    default: return 0;
  }
  return n >= 1 && n <= 8 ? static_cast<int>(n) : 0;
}

// WICHeifOrientation from the frame's HEIF metadata, or 0.
int HeifOrientation(IWICBitmapFrameDecode* frame) {
  ComRef<IWICMetadataBlockReader> blocks;
  if (FAILED(frame->QueryInterface(__uuidof(IWICMetadataBlockReader), reinterpret_cast<void**>(blocks.put()))))
    return 0;
  UINT count = 0;
  if (FAILED(blocks->GetCount(&count))) return 0;
  for (UINT i = 0; i < count && i < 64; ++i) {
    ComRef<IWICMetadataReader> reader;
    GUID format{};
    if (FAILED(blocks->GetReaderByIndex(i, reader.put())) || !reader.get() ||
        FAILED(reader->GetMetadataFormat(&format)) || !IsEqualGUID(format, kMetadataFormatHeif))
      continue;
    PROPVARIANT id, value;
    PropVariantInit(&id);
    PropVariantInit(&value);
    id.vt = VT_UI4;
    id.ulVal = kHeifOrientation;
    int orientation = 0;
    if (SUCCEEDED(reader->GetValue(nullptr, &id, &value))) orientation = OrientationValue(value);
    PropVariantClear(&value);
    if (orientation) return orientation;
  }
  return 0;
}

// The orientation in a JPEG's EXIF segment, read from the file's head by
// the program itself for decoders that give no metadata (Wine's); 0 when
// there is none.
int JpegExifOrientation(const std::vector<uint8_t>& head) {
  const size_t size = head.size();
  if (size < 4 || head[0] != 0xFF || head[1] != 0xD8) return 0;
  for (size_t at = 2; at + 4 <= size;) {
    if (head[at] != 0xFF) return 0;
    const uint8_t marker = head[at + 1];
    if (marker == 0xFF) {  // fill byte
      ++at;
      continue;
    }
    if (marker == 0xDA || marker == 0xD9) return 0;  // the scan, or the end: no EXIF before it
    const size_t length = size_t{head[at + 2]} << 8 | head[at + 3];
    if (length < 2) return 0;
    if (marker == 0xE1 && at + 2 + length <= size && length >= 8 && std::memcmp(&head[at + 4], "Exif\0\0", 6) == 0)
      return ExifOrientation(&head[at + 4], length - 2);
    at += 2 + length;
  }
  return 0;
}

// Which way up the stored picture is to be shown. WIC's decoders hand over
// the pixels as stored and leave the turning to the program; HEIF's decoder
// reports its transformation boxes, the others their EXIF tag.
int OrientationOf(IWICBitmapDecoder* decoder, IWICBitmapFrameDecode* frame, const std::vector<uint8_t>& head) {
  GUID container{};
  if (FAILED(decoder->GetContainerFormat(&container))) container = GUID_NULL;
  if (IsEqualGUID(container, GUID_ContainerFormatHeif)) {
    const int orientation = HeifOrientation(frame);
    if (orientation) return orientation;
  }
  ComRef<IWICMetadataQueryReader> reader;
  if (SUCCEEDED(frame->GetMetadataQueryReader(reader.put())) && reader.get()) {
    // JPEG's EXIF, TIFF's own directory, and the photo policy that every
    // codec with EXIF metadata maps to wherever its format keeps the tag.
    static const wchar_t* const kQueries[] = {L"/app1/ifd/{ushort=274}", L"/ifd/{ushort=274}",
                                              L"System.Photo.Orientation"};
    for (const wchar_t* query : kQueries) {
      PROPVARIANT value;
      PropVariantInit(&value);
      int orientation = 0;
      if (SUCCEEDED(reader->GetMetadataByName(query, &value))) orientation = OrientationValue(value);
      PropVariantClear(&value);
      if (orientation) return orientation;
    }
  }
  if (IsEqualGUID(container, GUID_ContainerFormatJpeg)) {
    const int orientation = JpegExifOrientation(head);
    if (orientation) return orientation;
  }
  return 1;
}

// The frame's embedded ICC profile, or nothing.
std::vector<uint8_t> ProfileOf(IWICImagingFactory* factory, IWICBitmapFrameDecode* frame) {
  constexpr UINT kMostContexts = 8;
  UINT count = 0;
  if (FAILED(frame->GetColorContexts(0, nullptr, &count)) || count == 0) return {};
  if (count > kMostContexts) count = kMostContexts;
  ComRef<IWICColorContext> contexts[kMostContexts];
  IWICColorContext* list[kMostContexts] = {};
  for (UINT i = 0; i < count; ++i) {
    if (FAILED(factory->CreateColorContext(contexts[i].put()))) return {};
    list[i] = contexts[i].get();
  }
  UINT filled = 0;
  if (FAILED(frame->GetColorContexts(count, list, &filled))) return {};
  for (UINT i = 0; i < filled && i < count; ++i) {
    WICColorContextType type;
    UINT size = 0;
    if (FAILED(list[i]->GetType(&type)) || type != WICColorContextProfile ||
        FAILED(list[i]->GetProfileBytes(0, nullptr, &size)) || size == 0)
      continue;
    std::vector<uint8_t> profile(size);
    UINT written = 0;
    if (SUCCEEDED(list[i]->GetProfileBytes(size, profile.data(), &written)) && written > 0 && written <= size) {
      profile.resize(written);
      return profile;
    }
  }
  return {};
}

DecodedPixels Decode(const char* path, uint64_t maxPixels) {
  std::vector<uint8_t> head;
  if (!path || !ReadHead(path, &head)) return Failure(ImportError::kUnreadableFile);
  const std::wstring name = WideName(path);
  if (name.empty()) return Failure(ImportError::kUnreadableFile);

  // The apartment outlives every interface below, which are released first.
  ComApartment apartment;
  if (!apartment.usable()) return Failure(ImportError::kUnsupported);
  ComRef<IWICImagingFactory> factory;
  HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                    __uuidof(IWICImagingFactory), reinterpret_cast<void**>(factory.put()));
  if (FAILED(result)) return Failure(IsOutOfMemory(result) ? ImportError::kOutOfMemory : ImportError::kUnsupported);

  ComRef<IWICBitmapDecoder> decoder;
  result = factory->CreateDecoderFromFilename(name.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                              decoder.put());
  if (result == WINCODEC_ERR_COMPONENTNOTFOUND || result == WINCODEC_ERR_UNKNOWNIMAGEFORMAT) {
    // No codec took the bytes: a camera format this Windows has no codec
    // for, or no picture at all.
    return Failure(LooksLikeCameraFormat(head.data(), head.size()) ? ImportError::kUnsupported
                                                                   : ImportError::kNotAPicture);
  }
  if (FAILED(result)) return Failure(ErrorOf(result));
  ComRef<IWICBitmapFrameDecode> frame;
  result = decoder->GetFrame(0, frame.put());
  if (FAILED(result)) return Failure(ErrorOf(result));

  UINT width = 0, height = 0;
  result = frame->GetSize(&width, &height);
  if (FAILED(result)) return Failure(ErrorOf(result));
  if (width == 0 || height == 0) return Failure(ImportError::kDamaged);
  const uint64_t count = uint64_t{width} * height;
  if (count > maxPixels || width > INT32_MAX / 4 || height > INT32_MAX) return Failure(ImportError::kTooLarge, count);
  if (count > SIZE_MAX / 4) return Failure(ImportError::kOutOfMemory);

  // Straight alpha, blue first: the format every version of WIC converts
  // any picture to. Red and blue are swapped below.
  ComRef<IWICFormatConverter> converter;
  result = factory->CreateFormatConverter(converter.put());
  if (SUCCEEDED(result))
    result = converter->Initialize(frame.get(), GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone, nullptr, 0.0,
                                   WICBitmapPaletteTypeCustom);
  if (FAILED(result)) return Failure(ErrorOf(result));

  DecodedPixels pixels;
  pixels.rgba.reset(new (std::nothrow) uint8_t[static_cast<size_t>(count) * 4]);
  if (!pixels.rgba) return Failure(ImportError::kOutOfMemory);
  pixels.width = static_cast<int32_t>(width);
  pixels.height = static_cast<int32_t>(height);
  const UINT stride = width * 4;
  const UINT band = static_cast<UINT>(kBandBytes / stride > 0 ? kBandBytes / stride : 1);
  for (UINT y = 0; y < height; y += band) {
    const UINT rows = height - y < band ? height - y : band;
    const WICRect rect = {0, static_cast<INT>(y), static_cast<INT>(width), static_cast<INT>(rows)};
    result = converter->CopyPixels(&rect, stride, stride * rows, pixels.rgba.get() + size_t{y} * stride);
    if (FAILED(result)) return Failure(ErrorOf(result));
  }

  uint8_t* p = pixels.rgba.get();
  bool transparent = false;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i, p += 4) {
    const uint8_t blue = p[0];
    p[0] = p[2];
    p[2] = blue;
    transparent = transparent || p[3] != 255;
  }
  pixels.hasAlpha = transparent;
  pixels.icc = ProfileOf(factory.get(), frame.get());
  pixels.orientation = OrientationOf(decoder.get(), frame.get(), head);
  return pixels;
}

}  // namespace

DecodedPixels DecodeWithWic(const char* path, uint64_t maxPixels) {
  try {
    return Decode(path, maxPixels);
  } catch (const std::bad_alloc&) {
    return Failure(ImportError::kOutOfMemory);
  }
}
