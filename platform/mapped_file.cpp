#include "platform/mapped_file.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>

namespace {

// The mapped files of the process, for the signal's handler: it takes no lock and allocates
// nothing.
struct region_t {
  std::atomic<bool> taken = false;
  std::atomic<std::uintptr_t> begin = 0, end = 0;  // end 0: none
  std::atomic<bool> cut = false;
};
std::array<region_t, 8> regions;
struct sigaction handler_before;

const auto page_size = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));

void put_zeros_in_place(int signal, siginfo_t* info, void* context) {
  const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
  for (region_t& region : regions) {
    if (address < region.begin || address >= region.end) continue;
    const std::uintptr_t page = address & ~(page_size - 1);
    void* const zeros = ::mmap(reinterpret_cast<void*>(page), page_size, PROT_READ,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (zeros == MAP_FAILED) break;
    region.cut = true;
    return;
  }
  if ((handler_before.sa_flags & SA_SIGINFO) != 0) {
    handler_before.sa_sigaction(signal, info, context);
  } else if (handler_before.sa_handler != SIG_DFL && handler_before.sa_handler != SIG_IGN) {
    handler_before.sa_handler(signal);
  } else {
    ::sigaction(SIGBUS, &handler_before, nullptr);  // the fault comes again and ends the process
  }
}

// Puts the handler in front of the present one, unless it is there already.
void guard() {
  struct sigaction present;
  ::sigaction(SIGBUS, nullptr, &present);
  if ((present.sa_flags & SA_SIGINFO) != 0 && present.sa_sigaction == put_zeros_in_place) return;
  handler_before = present;
  struct sigaction action = {};
  action.sa_sigaction = put_zeros_in_place;
  action.sa_flags = SA_SIGINFO;
  ::sigaction(SIGBUS, &action, nullptr);
}

}  // namespace

x_mapped_file::~x_mapped_file() {
  if (!bytes_) return;
  region_t& region = regions[place_];
  region.end = 0;
  region.taken = false;
  ::munmap(bytes_, size_);
}

bool x_mapped_file::map(int fd, std::size_t size) {
  *this = x_mapped_file();
  std::size_t place = 0;
  while (place < regions.size() && regions[place].taken.exchange(true)) ++place;
  if (place == regions.size()) return false;
  region_t& region = regions[place];
  void* const memory = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, fd, 0);
  if (memory == MAP_FAILED) {
    region.taken = false;
    return false;
  }
  bytes_ = static_cast<std::uint8_t*>(memory);
  size_ = size;
  place_ = place;
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  region.cut = false;
  region.begin = begin;
  region.end = begin + size;
  guard();
  return true;
}

void x_mapped_file::release() const {
  if (bytes_) ::madvise(bytes_, size_, MADV_DONTNEED);
}

void x_mapped_file::read_at_random() const {
  if (bytes_) ::madvise(bytes_, size_, MADV_RANDOM);
}

bool x_mapped_file::is_cut() const { return bytes_ && regions[place_].cut; }
