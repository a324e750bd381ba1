#pragma once
#include <cstring>

template <class Visit>
void ForEachEventLine(BlockHandle list, Visit visit) {
  uint32_t size = GlobalBlockSize(list);
  BlockLock lock(list);
  if (!lock) return;
  const char* p = reinterpret_cast<const char*>(lock.bytes());
  const char* end = p + size;
  // Lines are followed by one more zero byte; never read past the block.
  while (p < end && *p) {
    const char* nul = static_cast<const char*>(std::memchr(p, 0, static_cast<size_t>(end - p)));
    if (!nul) break;
    visit(p);
    p = nul + 1;
  }
}
