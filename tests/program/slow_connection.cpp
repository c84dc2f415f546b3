#include "tests/program/slow_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <deque>
#include <list>
#include <stdexcept>
#include <vector>

namespace {
using steady = std::chrono::steady_clock;
constexpr std::string_view sockets = "/tmp/.X11-unix/X";

struct packet_t {
  steady::time_point due;
  std::vector<char> bytes;
};

// One way of a connection.
struct way_t {
  int from = -1, to = -1;
  std::deque<packet_t> packets;
};

struct pair_t {
  way_t there, back;
  bool is_over = false;
};

int open_socket(const std::string& path, bool listens) {
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  const auto* const at = reinterpret_cast<const sockaddr*>(&address);
  const bool done = listens
                        ? bind(descriptor, at, sizeof address) == 0 && listen(descriptor, 8) == 0
                        : connect(descriptor, at, sizeof address) == 0;
  if (done) return descriptor;
  close(descriptor);
  return -1;
}

// False when the connection has ended.
bool read_way(way_t& way, steady::time_point due) {
  std::array<char, 65536> buffer;
  const ssize_t got = recv(way.from, buffer.data(), buffer.size(), MSG_DONTWAIT);
  if (got < 0) return errno == EAGAIN || errno == EINTR;
  if (got == 0) return false;
  way.packets.push_back({due, {buffer.data(), buffer.data() + got}});
  return true;
}

bool write_way(way_t& way) {
  while (!way.packets.empty() && way.packets.front().due <= steady::now()) {
    auto& bytes = way.packets.front().bytes;
    const ssize_t sent = send(way.to, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN || errno == EINTR;
    bytes.erase(bytes.begin(), bytes.begin() + sent);
    if (!bytes.empty()) break;
    way.packets.pop_front();
  }
  return true;
}
}  // namespace

slow_connection::slow_connection(const std::string& display, std::chrono::milliseconds delay)
    : delay_(delay) {
  const std::string number = display.substr(display.find(':') + 1);
  server_path_ = std::string(sockets) + number.substr(0, number.find('.'));
  for (int n = 600 + getpid() % 1000; listener_ < 0 && n < 2600; ++n) {
    name_ = ":" + std::to_string(n);
    path_ = std::string(sockets) + std::to_string(n);
    listener_ = open_socket(path_, true);
  }
  if (listener_ < 0) throw std::runtime_error("no socket for a slow connection");
  thread_ = std::thread([this] { serve(); });
}

slow_connection::~slow_connection() {
  ends_ = true;
  thread_.join();
  close(listener_);
  unlink(path_.c_str());
}

void slow_connection::serve() {
  std::list<pair_t> pairs;
  while (!ends_) {
    std::vector<pollfd> waited = {{listener_, POLLIN, 0}};
    for (const auto& pair : pairs) {
      waited.push_back({pair.there.from, POLLIN, 0});
      waited.push_back({pair.back.from, POLLIN, 0});
    }
    poll(waited.data(), waited.size(), 1);
    if ((waited[0].revents & POLLIN) != 0) {
      const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      const int server = open_socket(server_path_, false);
      if (client >= 0 && server >= 0) pairs.push_back({{client, server, {}}, {server, client, {}}});
    }
    const auto due = steady::now() + delay_;
    for (auto& pair : pairs) {
      for (auto* const way : {&pair.there, &pair.back})
        pair.is_over = !read_way(*way, due) || !write_way(*way) || pair.is_over;
      if (pair.is_over && pair.there.packets.empty() && pair.back.packets.empty()) {
        close(pair.there.from);
        close(pair.there.to);
        pair.there.from = -1;
      }
    }
    pairs.remove_if([](const pair_t& pair) { return pair.there.from < 0; });
  }
  for (auto& pair : pairs) {
    close(pair.there.from);
    close(pair.there.to);
  }
}
