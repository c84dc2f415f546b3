// Loading and closing a design file, and the fatal stop of the library.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "gx/text/at.h"
#include "gx/text/messages/status_names.h"
#include "kvi/load.h"
#include "kvi/state.h"

kvi_state_t kvi_state;

namespace {

constexpr std::int32_t status_base = 0x06050000;
constexpr std::int32_t file_data_invalid = 19;
constexpr std::int32_t invalid_string = 69;
constexpr std::int32_t max_name = 200;   // characters of directory or file name
constexpr std::int32_t max_names = 198;  // of both
constexpr const auto& kvi_error_array = gx_error_array;
static_assert(kvi_error_array.size() == KVI_NUMBER_OF_CODES);
static_assert(KVI_DAMAGED == status_base + file_data_invalid);

void close_files() {
  int& fd = kvi_state.designfile;
  if (fd >= 0) ::close(fd);
  fd = -1;
  kvi_state.debug.reset();
}

std::FILE* open_debug_file() {
  std::FILE* file = std::fopen("debug_kvdfi", "w");
  if (!file) std::exit(1);
  return file;
}

std::int32_t status_of(kvi_load_result result) {
  switch (result) {
    case kvi_load_result::loaded:
      return KVI_OK;
    case kvi_load_result::too_short:
      return KVI_REFUSED;
    case kvi_load_result::unreadable:
      return KVI_UNREADABLE;
    case kvi_load_result::locked:
      return KVI_LOCKED;
    case kvi_load_result::no_memory:
      return KVI_NO_MEMORY;
    case kvi_load_result::damaged:
      break;
  }
  return KVI_DAMAGED;
}

// Notes how the loading of `path` into kvi_state went.
std::int32_t note(const std::string& path, const kvi_loaded_t& loaded) {
  kvi_state.path = path;
  kvi_state.paths.reset();
  kvi_state.blocks.reset();
  kvi_state.load_error = loaded.message;
  kvi_state.kv_ner = kvi_state.design.info().num_errors;
  kvi_state.kv_nwa = kvi_state.design.info().num_warnings;
  return status_of(loaded.result);
}

}  // namespace

void kvi_debug(const char* text) {
  if (kvi_state.debug) std::fprintf(kvi_state.debug.get(), "%s\n", text);
}

const char* kvi_error_name(std::int32_t code) {
  const bool known = code >= 0 && code < KVI_NUMBER_OF_CODES;
  return known ? gx_at(kvi_error_array, code).data() : "";
}

void kvi_set_status(std::int32_t code, std::int32_t* status) {
  if (status) *status = code + status_base;
  for (std::FILE* file : {kvi_state.debug.get(), stdout}) {
    if (!file) continue;
    std::fprintf(file, " ?? error in GX_PACKAGE  code : %d\n", code);
    std::fprintf(file, " ?? error  : %30s\n", kvi_error_name(code));
  }
  kvi_debug(" HALT ");
  close_files();
  std::exit(code);
}

void kvi_init_dfi(std::int32_t dirname_len, const char* dirname, std::int32_t filetype_len,
                  const char* filetype, std::int32_t* status) {
  std::int32_t ignored;
  if (!status) status = &ignored;
  close_files();
  kvi_state.debug.reset(open_debug_file());
  kvi_debug("# KVI_INIT_DFI : start ");
  *status = KVI_REFUSED;
  kvi_unload();
  if (!dirname || !filetype || dirname_len < 1 || filetype_len < 1) {
    std::fprintf(kvi_state.debug.get(), "!!! ERROR : %d %d %d %d\n", dirname != nullptr,
                 dirname_len, filetype != nullptr, filetype_len);
    kvi_debug("!!! ERROR : KVI_INIT_DFI : Invalid Input string ");
    return;
  }
  std::int16_t day, month, year, hour, minute;
  kvi_get_date(&day, &month, &year, &hour, &minute);
  std::fprintf(kvi_state.debug.get(), "\n# KVI_INIT_DFI : date : %d-%d-%d**%d-%d\n", day, month,
               year, hour, minute);
  if (dirname_len > max_name || filetype_len > max_name || dirname_len + filetype_len > max_names) {
    std::printf("\n        !!! error invalid designfile dirname \n");
    std::printf(" dirname  : \"%.*s\"\n", dirname_len, dirname);
    std::printf(" filetype : \"%.*s\"\n", filetype_len, filetype);
    kvi_set_status(invalid_string, status);
  }
  std::string path(dirname, static_cast<std::size_t>(dirname_len));
  path.append("/").append(filetype, static_cast<std::size_t>(filetype_len));
  kvi_state.designfile = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (kvi_state.designfile < 0) {
    ++kvi_state.kv_ner;
    std::fprintf(kvi_state.debug.get(),
                 "!!! ( KVI_INIT_DFI ) impossible to open current_session_file  : \"%s\" \n",
                 path.c_str());
    kvi_set_status(file_data_invalid, status);
  }
  const auto loaded = kvi_load_design(kvi_state.design, kvi_state.designfile, path);
  *status = note(path, loaded);
  kvi_debug(*status == KVI_OK ? "!!!  KVI_INIT_DFI : END " : loaded.message.c_str());
}

void kvi_load(const char* path, std::int32_t* status) {
  std::int32_t ignored;
  if (!status) status = &ignored;
  kvi_unload();
  if (!path || !*path) {
    kvi_state.load_error = "no file named";
    *status = KVI_REFUSED;
    return;
  }
  *status = note(path, kvi_open_design(kvi_state.design, path));
}

void kvi_unload() {
  kvi_state.design = {};
  note({}, {});
}

const char* kvi_load_error() {
  if (!kvi_state.design.is_unchanged()) kvi_state.load_error = kvi_changed_message(kvi_state.path);
  return kvi_state.load_error.c_str();
}

const kvi_design_t& kvi_loaded() {
  static const kvi_design_t none;
  return kvi_state.design.is_unchanged() ? kvi_state.design : none;
}

void kvi_close_dfi() {
  kvi_debug("# KVI_CLOSE_DFI : start ");
  close_files();
}

std::int32_t kvi_get_nb_of_errors() { return kvi_state.kv_ner; }
std::int32_t kvi_get_nb_of_warnings() { return kvi_state.kv_nwa; }
float kvi_get_time_step() { return kvi_state.design.info().time_step; }
