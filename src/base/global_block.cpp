#include "base/global_block.h"

#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// A handle is slot index + 1 in its low 20 bits and the slot's generation in
// the high 12, so a handle kept after its block was freed is recognised as
// stale instead of reaching the slot's next block.
constexpr uint32_t kIndexBits = 20;
constexpr uint32_t kIndexMask = (1u << kIndexBits) - 1;
constexpr uint32_t kMaxSlots = kIndexMask;  // index + 1 must fit the mask

struct Slot {
  uint8_t* data = nullptr;
  uint32_t size = 0;
  uint32_t capacity = 0;  // grows geometrically, so growing a block bit by bit stays linear
  uint32_t locks = 0;
  uint32_t generation = 1;
  uint64_t serial = 0;  // new at every allocation and reallocation
  bool live = false;
};

std::vector<Slot>& Slots() {
  static std::vector<Slot> slots;
  return slots;
}
std::vector<uint32_t>& FreeSlots() {
  static std::vector<uint32_t> free_slots;
  return free_slots;
}
uint32_t g_live = 0;
uint64_t g_serial = 0;

Slot* Find(BlockHandle h) {
  if (h == 0) return nullptr;
  uint32_t index = (h & kIndexMask);
  if (index == 0 || index > Slots().size()) return nullptr;
  Slot& s = Slots()[index - 1];
  if (!s.live || (h >> kIndexBits) != (s.generation & 0xFFF)) return nullptr;
  return &s;
}

}  // namespace

BlockHandle GlobalBlockAlloc(uint32_t size) {
  uint32_t index;
  if (!FreeSlots().empty()) {
    index = FreeSlots().back();
  } else {
    if (Slots().size() >= kMaxSlots) return 0;
    Slots().emplace_back();
    index = static_cast<uint32_t>(Slots().size() - 1);
    FreeSlots().push_back(index);
  }
  Slot& s = Slots()[index];
  // calloc(0) may return null; every block owns at least one byte of storage.
  uint8_t* data = static_cast<uint8_t*>(std::calloc(size ? size : 1, 1));
  if (!data) return 0;
  FreeSlots().pop_back();
  s.data = data;
  s.size = size;
  s.capacity = size ? size : 1;
  s.locks = 0;
  s.serial = ++g_serial;
  s.live = true;
  ++g_live;
  return ((s.generation & 0xFFF) << kIndexBits) | (index + 1);
}

void* GlobalBlockLock(BlockHandle block) {
  Slot* s = Find(block);
  if (!s) return nullptr;
  ++s->locks;
  return s->data;
}

bool GlobalBlockUnlock(BlockHandle block) {
  Slot* s = Find(block);
  if (!s || s->locks == 0) return false;
  --s->locks;
  return true;
}

uint32_t GlobalBlockSize(BlockHandle block) {
  Slot* s = Find(block);
  return s ? s->size : 0;
}

bool GlobalBlockReAlloc(BlockHandle block, uint32_t size) {
  Slot* s = Find(block);
  if (!s) return false;
  if (size > s->capacity) {
    uint64_t grown = static_cast<uint64_t>(s->capacity) + s->capacity / 2;
    uint32_t capacity = grown > size && grown <= UINT32_MAX ? static_cast<uint32_t>(grown) : size;
    uint8_t* data = static_cast<uint8_t*>(std::realloc(s->data, capacity));
    if (!data && capacity != size) {
      capacity = size;
      data = static_cast<uint8_t*>(std::realloc(s->data, capacity));
    }
    if (!data) return false;
    s->data = data;
    s->capacity = capacity;
  }
  if (size > s->size) std::memset(s->data + s->size, 0, size - s->size);
  s->size = size;
  s->serial = ++g_serial;
  return true;
}

bool GlobalBlockFree(BlockHandle block) {
  Slot* s = Find(block);
  if (!s) return false;
  std::free(s->data);
  s->data = nullptr;
  s->size = s->capacity = s->locks = 0;
  s->live = false;
  s->generation = (s->generation + 1) & 0xFFF;
  if (s->generation == 0) s->generation = 1;
  FreeSlots().push_back(static_cast<uint32_t>(s - Slots().data()));
  --g_live;
  return true;
}

BlockHandle DuplicateBlock(BlockHandle block) {
  uint32_t size = GlobalBlockSize(block);
  if (size < 1) return 0;
  BlockHandle copy = GlobalBlockAlloc(size);
  if (!copy) return 0;
  BlockLock from(block), to(copy);
  std::memcpy(to.bytes(), from.bytes(), size);
  return copy;
}

uint64_t GlobalBlockSerial(BlockHandle block) {
  Slot* s = Find(block);
  return s ? s->serial : 0;
}

uint32_t GlobalBlockLiveCount() { return g_live; }

uint32_t GlobalBlockLockCount(BlockHandle block) {
  Slot* s = Find(block);
  return s ? s->locks : 0;
}
