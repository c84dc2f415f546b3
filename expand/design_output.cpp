#include "expand/design_output.h"

#include <cstdio>
#include <memory>

#include "expand/data_listing.h"
#include "expand/debug.h"
#include "expand/design_file.h"
#include "gx/text/message_list.h"
#include "gx/text/text_files.h"

namespace {

struct close_file {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using listing_t = std::unique_ptr<std::FILE, close_file>;

listing_t open_listing(const std::string& path) {
  kv_debug(" KV_GEN_DATA : file_path : \"%s\"\n", path.c_str());
  listing_t file(gx_popen_file(path, 'W', false));
  if (!file) {
    kv_debug("!! ERROR :KV_GEN_DATA  : file_path not open : \"%s\"\n", path.c_str());
    gx_tell("# RUN ");
    gx_tell("# !! Error : Impossible to Open the file : ");
    gx_tell_quoted("# ", path);
  }
  return file;
}

}  // namespace

bool kv_write_design(const kv_design_t& design, int designfile, const std::string& listing_path) {
  if (listing_path.empty()) return kv_write_image(design, designfile);
  const listing_t listing = open_listing(listing_path);
  if (!listing) {
    kv_write_image_header(design, designfile);
    return false;
  }
  const bool has_head = kv_write_listing_head(design, listing.get(), listing_path);
  return kv_write_image(design, designfile) && has_head &&
         kv_write_listing_body(design, listing.get());
}
