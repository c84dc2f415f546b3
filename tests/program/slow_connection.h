// A connection to an X server that takes a while: a display of its own, of which every byte
// reaches the other one later, both ways.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

class slow_connection {
 public:
  // `delay` is of one way.
  slow_connection(const std::string& display, std::chrono::milliseconds delay);
  ~slow_connection();
  slow_connection(const slow_connection&) = delete;
  slow_connection& operator=(const slow_connection&) = delete;

  const std::string& name() const { return name_; }  // for DISPLAY

 private:
  void serve();

  std::string name_, path_, server_path_;
  std::chrono::milliseconds delay_;
  int listener_ = -1;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};
