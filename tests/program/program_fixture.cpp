// The private X server, the process and the hands on its window (XTEST).
#include "tests/program/program_fixture.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <thread>

namespace {

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

void wait_until(const std::string& what, test_time limit, const std::function<bool()>& done) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) fail("waited too long for " + what);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

// The child of a fork becomes `words`; it dies with the test binary.
[[noreturn]] void become(const std::vector<std::string>& words,
                         const std::vector<std::string>& environment) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const auto& entry : environment) {
    const auto equals = entry.find('=');
    setenv(entry.substr(0, equals).c_str(), entry.substr(equals + 1).c_str(), 1);
  }
  std::vector<char*> argv;
  for (const auto& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  execvp(argv[0], argv.data());
  _exit(127);
}

std::string whole(int fd) {
  std::string text;
  char chunk[4096];
  ssize_t got = 0;
  while ((got = pread(fd, chunk, sizeof chunk, static_cast<off_t>(text.size()))) > 0)
    text.append(chunk, static_cast<std::size_t>(got));
  return text;
}

// Windows come and go under a test: a request that comes too late is no reason to die.
int ignore_x_error(Display*, XErrorEvent*) { return 0; }

std::string window_title(Display* display, Window window) {
  char* name = nullptr;
  if (!XFetchName(display, window, &name) || !name) return {};
  std::string title = name;
  XFree(name);
  return title;
}

// The window of the program: viewable, a child of the root, its title begins with "kivo".
Window find_window(Display* display) {
  Window root = 0, parent = 0, *children = nullptr, found = 0;
  unsigned count = 0;
  if (!XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count)) return 0;
  for (unsigned i = 0; i < count && !found; ++i) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(display, children[i], &attributes) &&
        attributes.map_state == IsViewable &&
        window_title(display, children[i]).starts_with("kivo"))
      found = children[i];
  }
  if (children) XFree(children);
  return found;
}

int shift_of(unsigned long mask) {
  int shift = 0;
  while (mask && !(mask & 1)) mask >>= 1, ++shift;
  return shift;
}

std::uint32_t channel(unsigned long pixel, unsigned long mask) {
  const unsigned long most = mask >> shift_of(mask);
  return most ? static_cast<std::uint32_t>(((pixel & mask) >> shift_of(mask)) * 255 / most) : 0;
}

}  // namespace

// ---------------------------------------------------------------------------- display

test_display::test_display(int depth, int width, int height) {
  int ends[2];
  if (pipe(ends) != 0) fail("no pipe for the X server");
  const std::string screen =
      std::to_string(width) + "x" + std::to_string(height) + "x" + std::to_string(depth);
  server_ = fork();
  if (server_ == 0) {
    close(ends[0]);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, 2);
    become({"Xvfb", "-displayfd", std::to_string(ends[1]), "-screen", "0", screen, "-nolisten",
            "tcp", "-noreset"},
           {});
  }
  close(ends[1]);
  std::string number;
  pollfd wait{ends[0], POLLIN, 0};
  char c = 0;
  while (poll(&wait, 1, static_cast<int>(test_limit.count())) > 0 && read(ends[0], &c, 1) == 1 &&
         c != '\n')
    number += c;
  close(ends[0]);
  if (number.empty()) {
    kill_server();
    fail("Xvfb does not start");
  }
  name_ = ":" + number;
  XSetErrorHandler(ignore_x_error);
  connection_ = XOpenDisplay(name_.c_str());
  if (!connection_) {
    kill_server();
    fail("no connection to Xvfb " + name_);
  }
}

test_display::~test_display() { kill_server(); }

void test_display::kill_server() {
  if (connection_) XCloseDisplay(connection_);
  connection_ = nullptr;
  if (server_ > 0) {
    kill(server_, SIGKILL);
    waitpid(server_, nullptr, 0);
  }
  server_ = -1;
}

test_display& shared_display() {
  static test_display display;
  return display;
}

// ---------------------------------------------------------------------------- process

test_process::test_process(const program_start& start) {
  out_fd_ = memfd_create("out", MFD_CLOEXEC);
  err_fd_ = memfd_create("err", MFD_CLOEXEC);
  std::vector<std::string> words = {start.program.empty() ? KIVO_PROGRAM : start.program};
  words.insert(words.end(), start.words.begin(), start.words.end());
  pid_ = fork();
  if (pid_ < 0) fail("no process for " + words[0]);
  if (pid_ == 0) {
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, 0);
    dup2(out_fd_, 1);
    dup2(err_fd_, 2);
    if (!start.directory.empty() && chdir(start.directory.c_str()) != 0) _exit(126);
    become(words, start.environment);
  }
}

test_process::~test_process() {
  if (running()) terminate(SIGKILL);
  close(out_fd_);
  close(err_fd_);
}

bool test_process::running() {
  if (!done_ && waitpid(pid_, &wait_status_, WNOHANG) == pid_) done_ = true;
  return !done_;
}

std::string test_process::out() const { return whole(out_fd_); }

process_result test_process::wait(test_time limit) {
  wait_until("the end of the program", limit, [&] { return !running(); });
  process_result result;
  result.out = whole(out_fd_);
  result.err = whole(err_fd_);
  if (WIFEXITED(wait_status_)) result.status = WEXITSTATUS(wait_status_);
  if (WIFSIGNALED(wait_status_)) result.signal = WTERMSIG(wait_status_);
  return result;
}

process_result test_process::terminate(int signal) {
  if (running()) kill(pid_, signal);
  return wait();
}

namespace {
program_start on_display(const test_display& display, program_start start) {
  start.environment.insert(
      start.environment.begin(),
      {"DISPLAY=" + display.name(), "VELMORAN=/nowhere", "XDG_STATE_HOME=/dev/null/none"});
  return start;
}
}  // namespace

process_result run_program(const test_display& display, const program_start& start,
                           test_time limit) {
  return test_process(on_display(display, start)).wait(limit);
}

process_result run_tool(const scratch_directory& directory, const std::string& program,
                        const std::vector<std::string>& words) {
  return run_program(shared_display(),
                     {.directory = directory.path(), .words = words, .program = program});
}

// ---------------------------------------------------------------------------- pictures

int test_picture::count(std::uint32_t rgb, int x0, int y0, int x1, int y1) const {
  int found = 0;
  for (int y = std::max(y0, 0); y <= std::min(y1, height - 1); ++y)
    for (int x = std::max(x0, 0); x <= std::min(x1, width - 1); ++x) found += at(x, y) == rgb;
  return found;
}

bool test_picture::write_ppm(const std::filesystem::path& path) const {
  std::string bytes = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
  for (const std::uint32_t pixel : pixels)
    for (const int shift : {16, 8, 0}) bytes += static_cast<char>(pixel >> shift & 255);
  std::ofstream out(path, std::ios::binary);
  out << bytes;
  return out.good();
}

// ---------------------------------------------------------------------------- session

test_session::test_session(test_display& display, const program_start& start)
    : display_(display),
      session_file_(start.directory / start.words.at(0) / "current_session"),
      process_(on_display(display, start)) {
  wait_until("the window", test_limit, [&] {
    if (!process_.running())
      fail("the program ended before its window was shown: " + process_.out());
    window_ = find_window(display_.connection());
    return window_ != 0;
  });
  move(width() / 2, height() / 2);  // without a window manager the keyboard follows the pointer
}

test_session::~test_session() {
  if (!display_.connection()) return;
  uncover();
  for (const int button : {1, 2, 3})
    XTestFakeButtonEvent(display_.connection(), unsigned(button), False, 0);
  flush();
}

int test_session::width() const {
  XWindowAttributes attributes{};
  XGetWindowAttributes(display_.connection(), window_, &attributes);
  return attributes.width;
}

int test_session::height() const {
  XWindowAttributes attributes{};
  XGetWindowAttributes(display_.connection(), window_, &attributes);
  return attributes.height;
}

void test_session::flush() { XSync(display_.connection(), False); }

unsigned test_session::keycode(unsigned long keysym, bool& shifted) {
  const KeyCode code = XKeysymToKeycode(display_.connection(), keysym);
  if (!code) fail("no key gives keysym " + std::to_string(keysym));
  int per_code = 0;
  KeySym* const map = XGetKeyboardMapping(display_.connection(), code, 1, &per_code);
  shifted = map && per_code > 1 && map[0] != keysym && map[1] == keysym;
  if (map) XFree(map);
  return code;
}

void test_session::key_down(unsigned long keysym) {
  bool shifted = false;
  XTestFakeKeyEvent(display_.connection(), keycode(keysym, shifted), True, 0);
  flush();
}

void test_session::key_up(unsigned long keysym) {
  bool shifted = false;
  XTestFakeKeyEvent(display_.connection(), keycode(keysym, shifted), False, 0);
  flush();
}

namespace {
constexpr struct {
  unsigned modifier;
  KeySym key;
} modifier_keys[] = {{test_session::shift, XK_Shift_L},
                     {test_session::control, XK_Control_L},
                     {test_session::alt, XK_Alt_L},
                     {test_session::lock, XK_Caps_Lock}};
}  // namespace

void test_session::key(unsigned long keysym, unsigned modifiers) {
  bool shifted = false;
  const unsigned code = keycode(keysym, shifted);
  if (shifted) modifiers |= shift;
  for (const auto& m : modifier_keys)
    if (modifiers & m.modifier) key_down(m.key);
  XTestFakeKeyEvent(display_.connection(), code, True, 0);
  XTestFakeKeyEvent(display_.connection(), code, False, 0);
  for (const auto& m : modifier_keys)
    if (modifiers & m.modifier) key_up(m.key);
  flush();
}

void test_session::keycode_press(unsigned code) {
  XTestFakeKeyEvent(display_.connection(), code, True, 0);
  XTestFakeKeyEvent(display_.connection(), code, False, 0);
  flush();
}

void test_session::type(std::string_view text) {
  for (const char c : text) key(c == '\n' ? XK_Return : static_cast<unsigned char>(c));
}

void test_session::command(std::string_view text) {
  type(text);
  key(XK_Return);
}

void test_session::move(int x, int y) {
  int root_x = 0, root_y = 0;
  Window child = 0;
  XTranslateCoordinates(display_.connection(), window_, DefaultRootWindow(display_.connection()), x,
                        y, &root_x, &root_y, &child);
  XTestFakeMotionEvent(display_.connection(), -1, root_x, root_y, 0);
  flush();
}

test_session::place test_session::pointer() {
  Window root = 0, child = 0;
  int root_x = 0, root_y = 0;
  place at{};
  unsigned state = 0;
  XQueryPointer(display_.connection(), window_, &root, &child, &root_x, &root_y, &at.x, &at.y,
                &state);
  return at;
}

void test_session::button_down(int button) {
  XTestFakeButtonEvent(display_.connection(), static_cast<unsigned>(button), True, 0);
  flush();
}

void test_session::button_up(int button) {
  XTestFakeButtonEvent(display_.connection(), static_cast<unsigned>(button), False, 0);
  flush();
}

void test_session::click(int x, int y, int button, unsigned modifiers) {
  move(x, y);
  for (const auto& m : modifier_keys)
    if (modifiers & m.modifier) key_down(m.key);
  button_down(button);
  button_up(button);
  for (const auto& m : modifier_keys)
    if (modifiers & m.modifier) key_up(m.key);
}

void test_session::resize(int width, int height) {
  XResizeWindow(display_.connection(), window_, static_cast<unsigned>(width),
                static_cast<unsigned>(height));
  flush();
}

void test_session::cover(int x, int y, int width, int height) {
  Display* const display = display_.connection();
  uncover();
  XWindowAttributes attributes{};
  XGetWindowAttributes(display, window_, &attributes);
  XSetWindowAttributes set{};
  set.override_redirect = True;
  set.background_pixel = WhitePixel(display, DefaultScreen(display));
  cover_ =
      XCreateWindow(display, DefaultRootWindow(display), attributes.x + x, attributes.y + y,
                    static_cast<unsigned>(width), static_cast<unsigned>(height), 0, CopyFromParent,
                    InputOutput, nullptr, CWOverrideRedirect | CWBackPixel, &set);
  XMapRaised(display, cover_);
  flush();
}

void test_session::uncover() {
  if (cover_) XDestroyWindow(display_.connection(), cover_);
  cover_ = 0;
  flush();
}

void test_session::ask_to_close() {
  Display* const display = display_.connection();
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window_;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
  XSendEvent(display, window_, False, NoEventMask, &event);
  flush();
}

namespace {
struct image_deleter {
  void operator()(XImage* image) const { XDestroyImage(image); }
};
using image_ptr = std::unique_ptr<XImage, image_deleter>;

// The window as the server has it. It has pixels of the part on the screen only; the window may
// reach beyond its edge.
image_ptr grab(Display* display, Window window, XWindowAttributes& attributes) {
  XGetWindowAttributes(display, window, &attributes);
  int left = 0, top = 0;
  Window child = 0;
  XTranslateCoordinates(display, window, attributes.root, 0, 0, &left, &top, &child);
  const int width = std::min(attributes.width, WidthOfScreen(attributes.screen) - left);
  const int height = std::min(attributes.height, HeightOfScreen(attributes.screen) - top);
  image_ptr image(XGetImage(display, window, 0, 0, static_cast<unsigned>(width),
                            static_cast<unsigned>(height), AllPlanes, ZPixmap));
  if (!image) fail("no picture of the window");
  return image;
}

// The colour of each pixel value of a visual with a palette; empty for the others.
std::vector<std::uint32_t> palette_of(Display* display, const XWindowAttributes& attributes) {
  const Visual& visual = *attributes.visual;
  if (visual.c_class == TrueColor || visual.c_class == DirectColor) return {};
  std::vector<XColor> colors(static_cast<std::size_t>(visual.map_entries));
  for (std::size_t i = 0; i < colors.size(); ++i) colors[i].pixel = i;
  XQueryColors(display, attributes.colormap, colors.data(), visual.map_entries);
  std::vector<std::uint32_t> palette;
  for (const XColor& c : colors)
    palette.push_back(
        static_cast<std::uint32_t>(c.red >> 8 << 16 | c.green >> 8 << 8 | c.blue >> 8));
  return palette;
}
}  // namespace

test_picture test_session::picture() {
  Display* const display = display_.connection();
  XWindowAttributes attributes{};
  const image_ptr image = grab(display, window_, attributes);
  const Visual& visual = *attributes.visual;
  const auto palette = palette_of(display, attributes);
  test_picture picture{image->width, image->height, {}};
  picture.pixels.resize(static_cast<std::size_t>(image->width) *
                        static_cast<std::size_t>(image->height));
  // A row of the usual image already holds the colours.
  const bool is_plain = palette.empty() && image->bits_per_pixel == 32 &&
                        image->byte_order == LSBFirst && visual.red_mask == 0xFF0000 &&
                        visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
  auto out = picture.pixels.begin();
  for (int y = 0; y < picture.height; ++y) {
    if (is_plain) {
      const char* const row = image->data + y * image->bytes_per_line;
      std::memcpy(&*out, row, static_cast<std::size_t>(picture.width) * 4);
      for (const auto end = out + picture.width; out != end; ++out) *out &= 0xFFFFFF;
      continue;
    }
    for (int x = 0; x < picture.width; ++x, ++out) {
      const unsigned long pixel = XGetPixel(image.get(), x, y);
      *out = pixel < palette.size()
                 ? palette[pixel]
                 : channel(pixel, visual.red_mask) << 16 | channel(pixel, visual.green_mask) << 8 |
                       channel(pixel, visual.blue_mask);
    }
  }
  return picture;
}

std::string test_session::title() { return window_title(display_.connection(), window_); }

std::vector<std::string> test_session::session_lines() const {
  return split_lines(read_file(session_file_));
}

std::string test_session::wait_for_head(std::string_view head, test_time limit) {
  std::string found;
  std::vector<std::string> lines;
  try {
    wait_until("\"" + std::string(head) + "\"", limit, [&] {
      lines = session_lines();
      for (std::size_t i = lines_seen_; i < lines.size(); ++i)
        if (lines[i].starts_with(head)) {
          found = lines[i];
          lines_seen_ = i + 1;
          return true;
        }
      if (!process_.running()) fail("the program ended, no line \"" + std::string(head) + "\"");
      return false;
    });
  } catch (const std::runtime_error& error) {
    std::string text = error.what();
    text += "; lines so far:";
    for (std::size_t i = lines_seen_; i < lines.size(); ++i) text += "\n  \"" + lines[i] + "\"";
    fail(text);
  }
  return found;
}

void test_session::wait_for_line(std::string_view line, test_time limit) {
  wait_until("the line \"" + std::string(line) + "\"", limit,
             [&] { return wait_for_head(line, limit) == line; });
}

void test_session::settle(test_time limit) {
  const auto bytes = [&] {
    XWindowAttributes attributes{};
    const image_ptr image = grab(display_.connection(), window_, attributes);
    return std::string(image->data, static_cast<std::size_t>(image->bytes_per_line) *
                                        static_cast<std::size_t>(image->height));
  };
  std::string last = bytes();
  int still = 0;  // looks at an unchanged picture
  wait_until("the picture to stand still", limit, [&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    std::string next = bytes();
    still = next == last ? still + 1 : 0;
    last = std::move(next);
    return still == 3;
  });
}

test_picture test_session::changed(const test_picture& before, test_time limit) {
  wait_until("another picture", limit, [&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return picture().pixels != before.pixels;
  });
  settle(limit);
  return picture();
}
