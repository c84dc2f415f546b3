// Drives the real program: a private X server, the process, and its window as a user has it.
//
// Every wait has a limit; one that passes throws std::runtime_error, which fails the test with a
// text that says what was waited for.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/scratch_directory.h"

struct _XDisplay;

using test_time = std::chrono::milliseconds;
inline constexpr test_time test_limit{20000};

// One Xvfb with one screen; killed at the end, also when the test binary dies.
class test_display {
 public:
  explicit test_display(int depth = 24, int width = 1280, int height = 1024);
  ~test_display();
  test_display(const test_display&) = delete;
  test_display& operator=(const test_display&) = delete;

  const std::string& name() const { return name_; }  // for DISPLAY
  pid_t server() const { return server_; }
  _XDisplay* connection() const { return connection_; }
  void kill_server();  // the connection of everyone is lost

 private:
  pid_t server_ = -1;
  std::string name_;
  _XDisplay* connection_ = nullptr;
};

// The display shared by the tests of this binary, started at its first use.
test_display& shared_display();

struct process_result {
  std::string out, err;
  int status = -1;  // exit status, -1 when a signal ended the process
  int signal = 0;   // the signal that ended it, 0 for none
};

// Where and how the program runs. `words` are its arguments, the design directory first;
// `environment` entries are NAME=VALUE and win over those of the test, which has no product
// directory: VELMORAN=KIVO_PRODUCT_DIR gives the one that is shipped.
struct program_start {
  std::filesystem::path directory{};  // current directory of the process
  std::vector<std::string> words{};
  std::vector<std::string> environment{};
  std::string program{};  // empty: the program under test
};

// A process with its output in memory files; killed at the end when it still runs.
class test_process {
 public:
  explicit test_process(const program_start& start);
  ~test_process();
  test_process(const test_process&) = delete;
  test_process& operator=(const test_process&) = delete;

  pid_t pid() const { return pid_; }
  bool running();
  process_result wait(test_time limit = test_limit);  // until it ends by itself
  process_result terminate(int signal);               // sends the signal, then waits
  std::string out() const;                            // what it printed so far

 private:
  pid_t pid_ = -1;
  int out_fd_ = -1, err_fd_ = -1;
  int wait_status_ = 0;
  bool done_ = false;
};

// Runs the program to its end on the display.
process_result run_program(const test_display& display, const program_start& start,
                           test_time limit = test_limit);

// Runs one of the other programs to its end in the directory.
process_result run_tool(const scratch_directory& directory, const std::string& program,
                        const std::vector<std::string>& words);

// The pixels of a drawable, row by row, each 0xRRGGBB.
struct test_picture {
  int width = 0, height = 0;
  std::vector<std::uint32_t> pixels;
  std::uint32_t at(int x, int y) const {
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
  }
  // Pixels of a colour inside x0..x1, y0..y1 (both included; clipped to the picture).
  int count(std::uint32_t rgb, int x0, int y0, int x1, int y1) const;
  int count(std::uint32_t rgb) const { return count(rgb, 0, 0, width - 1, height - 1); }
  bool write_ppm(const std::filesystem::path& path) const;
};

// The program with its window open, under the hands of a user.
class test_session {
 public:
  // Starts the program and waits until its window is there and shown.
  test_session(test_display& display, const program_start& start);
  ~test_session();

  test_process& process() { return process_; }
  unsigned long window() const { return window_; }
  int width() const;
  int height() const;

  // --- keyboard; a key is a keysym of X11/keysym.h
  enum modifier : unsigned { none = 0, shift = 1, control = 2, alt = 4, lock = 8 };
  void key_down(unsigned long keysym);
  void key_up(unsigned long keysym);
  void key(unsigned long keysym, unsigned modifiers = none);
  void keycode_press(unsigned code);    // and release, whatever the key means
  void type(std::string_view text);     // "\n" is Return
  void command(std::string_view text);  // types the line and Return

  // --- pointer, in pixels of the window
  void move(int x, int y);
  struct place {
    int x, y;
  };
  place pointer();
  void button_down(int button);
  void button_up(int button);
  void click(int x, int y, int button = 1, unsigned modifiers = none);

  // --- window
  void resize(int width, int height);
  void cover(int x, int y, int width, int height);  // another window over that part ...
  void uncover();                                   // ... and away again
  void ask_to_close();                              // WM_DELETE_WINDOW
  test_picture picture();                           // of the window as it is now
  std::string title();

  // Waits until the session file of the design holds the line, counted from where the last such
  // wait ended.
  void wait_for_line(std::string_view line, test_time limit = test_limit);
  // Waits until the file holds more lines that begin with `head`; gives the first one.
  std::string wait_for_head(std::string_view head, test_time limit = test_limit);
  // Until the program has answered all requests and drawn: it has read every event sent and the
  // picture stands still.
  void settle(test_time limit = test_limit);
  // The picture that differs from the one given and stands still.
  test_picture changed(const test_picture& before, test_time limit = test_limit);
  std::vector<std::string> session_lines() const;

 private:
  unsigned keycode(unsigned long keysym, bool& shifted);
  void flush();
  test_display& display_;
  std::filesystem::path session_file_;
  test_process process_;
  unsigned long window_ = 0, cover_ = 0;
  std::size_t lines_seen_ = 0;
};
