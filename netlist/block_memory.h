// Memory for the blocks of a design, taken from the system in pieces that grow with the design, the
// first of them in huge pages where there are such: what a design costs besides its records is
// page faults on fresh memory.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

class kv_block_memory {
 public:
  // Room for `size` bytes, aligned for any record, until this ends. Throws std::bad_alloc.
  std::byte* take(std::size_t size);

 private:
  struct unmap {
    std::size_t size = 0;
    void operator()(std::byte* piece) const;
  };
  using piece_t = std::unique_ptr<std::byte, unmap>;
  std::vector<piece_t> pieces_;
  std::size_t in_pieces_ = 0;                   // bytes of all pieces
  std::byte *next_ = nullptr, *end_ = nullptr;  // what is left of the last one
};
