// The program's own store of movable memory blocks. Pictures, event lists and
// the calendar document live in blocks addressed by 32-bit handles, so the
// records that hold those handles are byte-identical in 32- and 64-bit builds.
// Single-threaded, like the program.
#pragma once
#include <cstdint>

using BlockHandle = uint32_t;  // 0 is "no block"

// A new zero-filled block of `size` bytes, or 0 when memory runs out.
BlockHandle GlobalBlockAlloc(uint32_t size);
// The block's bytes, or nullptr for a handle that is not a live block. The
// pointer stays valid until the block is reallocated or freed.
void* GlobalBlockLock(BlockHandle block);
// Ends one access begun by GlobalBlockLock; false when nothing was locked.
bool GlobalBlockUnlock(BlockHandle block);
// The block's size in bytes, 0 for a handle that is not a live block.
uint32_t GlobalBlockSize(BlockHandle block);
// Grows or shrinks the block, keeping its bytes and zero-filling new ones.
// The handle stays the same; false (block untouched) when memory runs out.
bool GlobalBlockReAlloc(BlockHandle block, uint32_t size);
// Frees the block; false for a handle that is not a live block.
bool GlobalBlockFree(BlockHandle block);

// A new block with a copy of `block`'s bytes, or 0 when the block is empty
// (size below 1), not live, or memory runs out.
BlockHandle DuplicateBlock(BlockHandle block);

// A number no other allocation or reallocation of this process gets, 0 for
// a handle that is not a live block: whatever is kept about a block's bytes
// (a scaled copy of a picture) is known to be stale when it changes, even
// when a freed block's handle comes back.
uint64_t GlobalBlockSerial(BlockHandle block);

// How many blocks are alive and how many locks are held, for leak checks.
uint32_t GlobalBlockLiveCount();
uint32_t GlobalBlockLockCount(BlockHandle block);

// Locks a block for the lifetime of the object.
class BlockLock {
 public:
  explicit BlockLock(BlockHandle block) : block_(block), data_(GlobalBlockLock(block)) {}
  ~BlockLock() {
    if (data_) GlobalBlockUnlock(block_);
  }
  BlockLock(const BlockLock&) = delete;
  BlockLock& operator=(const BlockLock&) = delete;
  explicit operator bool() const { return data_ != nullptr; }
  uint8_t* bytes() const { return static_cast<uint8_t*>(data_); }
  template <class T>
  T* as() const { return static_cast<T*>(data_); }

 private:
  BlockHandle block_;
  void* data_;
};
