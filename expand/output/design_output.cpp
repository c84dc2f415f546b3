#include "expand/output/design_output.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdio>

#include "expand/debug.h"
#include "expand/messages.h"
#include "expand/output/data_listing.h"
#include "expand/output/design_file.h"
#include "platform/files.h"

namespace {

x_file open_listing(const std::string& path) {
  kv_debug(" KV_GEN_DATA : file_path : \"%s\"\n", path.c_str());
  std::string why;
  const int fd = kv_open_output(path, O_WRONLY | O_TRUNC, why);
  if (fd >= 0) return x_file(::fdopen(fd, "w"));
  kv_debug("!! ERROR :KV_GEN_DATA  : file_path not open : \"%s\"\n", path.c_str());
  kv_tell(kv_message::listing_not_opened, {}, path, why);
  return nullptr;
}

}  // namespace

bool kv_write_design(const kv_design_t& design, int designfile, const std::string& listing_path,
                     std::string& why) {
  const auto written = [&](std::string_view file, bool is_written) {
    if (!is_written && why.empty()) why = std::string(file) + " : " + x_why(errno);
    return is_written;
  };
  if (const int other = kv_other_session(designfile); other != 0) {
    kv_tell(kv_message::other_session, {}, std::to_string(other));
  }
  const kv_design_lock lock(designfile);
  if (!lock.is_held()) {
    kv_tell(kv_message::design_in_use);
    return false;
  }
  constexpr std::string_view image = "design_kv";
  if (listing_path.empty()) return written(image, kv_write_image(design, designfile));
  const x_file listing = open_listing(listing_path);
  if (!listing) {
    kv_write_image_header(design, designfile);
    return false;
  }
  const std::string_view name = std::string_view(listing_path).substr(listing_path.rfind('/') + 1);
  const bool has_head = written(name, kv_write_listing_head(design, listing.get(), listing_path));
  return written(image, kv_write_image(design, designfile)) && has_head &&
         written(name, kv_write_listing_body(design, listing.get()));
}
