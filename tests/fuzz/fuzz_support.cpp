#include "fuzz_support.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "base/global_block.h"

const std::string& FuzzFolder() {
  // Never destroyed, so the clean-up at exit can still read it.
  static const std::string* folder = [] {
    char pattern[] = "/tmp/quernal-fuzz-XXXXXX";
    const char* made = mkdtemp(pattern);
    if (!made) std::abort();
    std::atexit([] {
      std::error_code ignored;
      std::filesystem::remove_all(FuzzFolder(), ignored);
    });
    return new std::string(made);
  }();
  return *folder;
}

std::string WriteInput(const char* name, const uint8_t* data, size_t size) {
  std::string path = FuzzFolder() + "/" + name;
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) std::abort();
  if (size) std::fwrite(data, 1, size, f);
  std::fclose(f);
  return path;
}

void CheckNoBlocksLeft() {
  if (GlobalBlockLiveCount() != 0) {
    std::fprintf(stderr, "%u memory blocks outlived the input\n", GlobalBlockLiveCount());
    std::abort();
  }
}
