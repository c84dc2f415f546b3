// The design file: the image of a design. It is written in place and held open for a session, so
// that what the last run left stays until the next one.
#pragma once

#include <string>

#include "expand/design.h"

// Opens (makes, with the rights 0660 less the umask) a file that a run writes; `flags` are further
// ones of open(2). Nothing is written through a symbolic link, and nothing but a file or a device
// is opened. The descriptor, or -1 and in `why` the reason in words.
int kv_open_output(const std::string& path, int flags, std::string& why);

// Opens (makes) a design file without cutting it, and lets others see that a session holds it. The
// descriptor, or -1 and in `why` the reason in words.
int kv_open_design_file(const std::string& path, std::string& why);

// Keeps other writers and readers away from a design file for its life. Waits a second for readers
// to finish.
class kv_design_lock {
 public:
  explicit kv_design_lock(int fd);
  ~kv_design_lock();
  kv_design_lock(const kv_design_lock&) = delete;
  kv_design_lock& operator=(const kv_design_lock&) = delete;

  bool is_held() const { return held_; }

 private:
  int fd_;
  bool held_;
};

// Another process that holds the design file open for a session; 0 when there is none.
int kv_other_session(int fd);

// Writes the image of a design to an open file, from its start. It is valid only when all of it was
// written: the header follows when the rest is on the disk. False when something could not be
// written.
bool kv_write_image(const kv_design_t& design, int fd);

// What is left of an image whose listing could not be opened: the header, and nothing after it.
bool kv_write_image_header(const kv_design_t& design, int fd);
