// Memory for the blocks of an array, taken from the system in pieces that grow with the array: what
// a large design costs beside its records is the clearing of fresh pages, one by one.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

class kv_block_memory {
 public:
  kv_block_memory() = default;
  kv_block_memory(kv_block_memory&& other) noexcept { *this = std::move(other); }
  kv_block_memory& operator=(kv_block_memory&& other) noexcept;

  // Room for `size` bytes, aligned for any record, until this ends. Throws std::bad_alloc.
  std::byte* take(std::size_t size);

 private:
  struct unmap {
    std::size_t size = 0;
    void operator()(std::byte* piece) const;
  };
  using piece_t = std::unique_ptr<std::byte, unmap>;
  static piece_t map(std::size_t size);

  std::vector<piece_t> pieces_;
  std::size_t in_pieces_ = 0;                   // bytes of all pieces
  std::byte *next_ = nullptr, *end_ = nullptr;  // what is left of the last one
};
