#include "kvi/file_lock.h"

#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

namespace {

constexpr std::chrono::milliseconds patience{1000}, between_tries{10};

// The system lists its locks one a line: "1: FLOCK  ADVISORY  WRITE 1234 fe:01:5678 0 EOF".
std::string writer_of(int fd) {
  struct stat file;
  if (::fstat(fd, &file) != 0) return "another process";
  char identity[64];
  std::snprintf(identity, sizeof identity, "%02x:%02x:%ju", major(file.st_dev), minor(file.st_dev),
                static_cast<std::uintmax_t>(file.st_ino));
  std::ifstream locks("/proc/locks");
  std::string number, kind, manner, access, process, identity_of_lock, range;
  while (locks >> number >> kind >> manner >> access >> process >> identity_of_lock &&
         std::getline(locks, range)) {
    if (kind != "FLOCK" || access != "WRITE" || identity_of_lock != identity) continue;
    std::string name;
    std::getline(std::ifstream("/proc/" + process + "/comm"), name);
    return (name.empty() ? "a program" : name) + " (process " + process + ")";
  }
  return "another process";
}

}  // namespace

std::optional<std::string> kvi_lock_shared(int fd) {
  using clock = std::chrono::steady_clock;
  const auto end = clock::now() + patience;
  while (::flock(fd, LOCK_SH | LOCK_NB) != 0) {
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) return std::nullopt;
    if (clock::now() >= end) return writer_of(fd);
    std::this_thread::sleep_for(between_tries);
  }
  return std::nullopt;
}

void kvi_unlock(int fd) { ::flock(fd, LOCK_UN); }
