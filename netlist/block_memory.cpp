#include "netlist/block_memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <utility>

namespace {

constexpr std::size_t granule = 64;  // no two blocks share a line of the cache
constexpr std::size_t huge_page = std::size_t{1} << 21;
constexpr std::size_t first_piece = std::size_t{1} << 19;  // enough for a small design
constexpr std::size_t largest_piece = std::size_t{1} << 25;
// A virtual machine gives free huge pages back to its host; fetching many of them again would cost
// a large design more than small pages do.
constexpr std::size_t most_in_huge_pages = std::size_t{1} << 25;

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

// Small pages that will be written soon, taken at once; a system that cannot does it one by one.
std::byte* map_small_pages(std::size_t size) {
  std::byte* pages = map_pages(size);
#ifdef MADV_POPULATE_WRITE
  ::madvise(pages, size, MADV_POPULATE_WRITE);
#endif
  return pages;
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

}  // namespace

void kv_block_memory::unmap::operator()(std::byte* piece) const { ::munmap(piece, size); }

std::byte* kv_block_memory::take(std::size_t size) {
  size = round_up(size, granule);
  if (size > static_cast<std::size_t>(end_ - next_)) {
    const bool is_first = in_pieces_ == 0 && size <= first_piece;
    // Later ones are a quarter of what there is, so that little is wasted.
    const std::size_t piece =
        is_first ? first_piece
                 : round_up(std::max(size, std::min(in_pieces_ / 4, largest_piece)), huge_page);
    const bool is_huge = in_pieces_ < most_in_huge_pages;
    std::byte* pages = is_first  ? map_pages(piece)
                       : is_huge ? map_huge_pages(piece)
                                 : map_small_pages(piece);
    pieces_.push_back(piece_t(pages, unmap{piece}));
    in_pieces_ += piece;
    next_ = pages;
    end_ = pages + piece;
  }
  return std::exchange(next_, next_ + size);
}
