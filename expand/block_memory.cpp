#include "expand/block_memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace {

// A large array lies in pages of this size where the system has them: one fault instead of 512.
constexpr std::size_t huge_page = std::size_t{1} << 21;
constexpr std::size_t smallest_piece = std::size_t{1} << 16, largest_piece = std::size_t{1} << 25;
constexpr std::size_t granule = 64;  // no two blocks share a line of the cache

constexpr std::size_t round_up(std::size_t size, std::size_t to) {
  return (size + to - 1) / to * to;
}

// Without room the program's new-handler has its say, as for `new`.
std::byte* map_pages(std::size_t size) {
  for (;;) {
    void* pages = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages != MAP_FAILED) return static_cast<std::byte*>(pages);
    const auto without_memory = std::get_new_handler();
    if (without_memory == nullptr) throw std::bad_alloc();
    without_memory();
  }
}

// `size` bytes at a multiple of huge pages: what was mapped around them is given back.
std::byte* map_huge_pages(std::size_t size) {
  std::byte* pages = map_pages(size + huge_page);
  const auto before = round_up(reinterpret_cast<std::uintptr_t>(pages), huge_page) -
                      reinterpret_cast<std::uintptr_t>(pages);
  if (before > 0) ::munmap(pages, before);
  if (before < huge_page) ::munmap(pages + before + size, huge_page - before);
  ::madvise(pages + before, size, MADV_HUGEPAGE);
  return pages + before;
}

// Pages that will be written soon, taken at once; a system that cannot does it one by one.
std::byte* map_small_pages(std::size_t size) {
  std::byte* pages = map_pages(size);
#ifdef MADV_POPULATE_WRITE
  ::madvise(pages, size, MADV_POPULATE_WRITE);
#endif
  return pages;
}

}  // namespace

void kv_block_memory::unmap::operator()(std::byte* piece) const { ::munmap(piece, size); }

kv_block_memory::piece_t kv_block_memory::map(std::size_t size) {
  return {size < huge_page ? map_small_pages(size) : map_huge_pages(size), unmap{size}};
}

kv_block_memory& kv_block_memory::operator=(kv_block_memory&& other) noexcept {
  pieces_ = std::exchange(other.pieces_, {});
  in_pieces_ = std::exchange(other.in_pieces_, 0);
  next_ = std::exchange(other.next_, nullptr);
  end_ = std::exchange(other.end_, nullptr);
  return *this;
}

std::byte* kv_block_memory::take(std::size_t size) {
  size = round_up(size, granule);
  if (size > static_cast<std::size_t>(end_ - next_)) {
    // A quarter more each time, so that little is taken in vain.
    const std::size_t wanted =
        std::max(size, std::clamp(in_pieces_ / 4, smallest_piece, largest_piece));
    const std::size_t piece = round_up(wanted, wanted < huge_page ? 4096 : huge_page);
    pieces_.push_back(map(piece));
    in_pieces_ += piece;
    next_ = pieces_.back().get();
    end_ = next_ + piece;
  }
  return std::exchange(next_, next_ + size);
}
