// How often files are opened, as the system reports it.
#pragma once

#include <sys/inotify.h>
#include <unistd.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

class open_count {
 public:
  explicit open_count(const std::vector<std::string>& paths) {
    for (const auto& path : paths) {
      // Two reports that are the same become one: closing comes between two openings.
      const int watch = ::inotify_add_watch(events_, path.c_str(), IN_OPEN | IN_CLOSE);
      if (watch < 0) throw std::runtime_error("cannot be watched: " + path);
      path_of_[watch] = path;
    }
  }
  ~open_count() { ::close(events_); }
  open_count(const open_count&) = delete;
  open_count& operator=(const open_count&) = delete;

  // Since the last call, or since the beginning; without the files that were not opened.
  std::map<std::string, int> take() {
    std::map<std::string, int> counts;
    alignas(inotify_event) char bytes[16384];
    for (ssize_t size; (size = ::read(events_, bytes, sizeof bytes)) > 0;) {
      for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(bytes + at);
        if ((event->mask & IN_OPEN) != 0) ++counts[path_of_.at(event->wd)];
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
    return counts;
  }

 private:
  int events_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  std::map<int, std::string> path_of_;
};
