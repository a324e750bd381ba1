// A stand-in paint program for the round-trip test: it paints the first
// pixel of the BMP it is given, or, when that pixel is pure white, throws
// the file away as a program that failed would.
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  FILE* in = std::fopen(argv[1], "rb");
  if (!in) return 3;
  std::vector<unsigned char> bytes;
  for (int c; (c = std::fgetc(in)) != EOF;) bytes.push_back(static_cast<unsigned char>(c));
  std::fclose(in);
  if (bytes.size() < 60) return 4;
  const size_t bits = bytes[10] | bytes[11] << 8 | bytes[12] << 16 | static_cast<size_t>(bytes[13]) << 24;
  if (bits + 3 > bytes.size()) return 5;
  if (bytes[bits] == 255 && bytes[bits + 1] == 255 && bytes[bits + 2] == 255) return std::remove(argv[1]), 0;
  bytes[bits] = 0x56, bytes[bits + 1] = 0x34, bytes[bits + 2] = 0x12;
  FILE* out = std::fopen(argv[1], "wb");
  if (!out) return 6;
  std::fwrite(bytes.data(), 1, bytes.size(), out);
  return std::fclose(out) == 0 ? 0 : 7;
}
