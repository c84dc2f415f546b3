// The file table: opening the current version of a file into a slot, pointing a slot at another
// file, closing. A failure stops the program, except in the try_ forms, which leave slots as they
// were and say why.
//
// A data file is read whole when it is opened and its stream is closed at once: nothing is read
// from it later, and the slot's `file_io_id` is open only while a save writes its target.
#include "gx/db/file_state.h"
#include "gx/db/files.h"
#include "gx/db/object_access.h"
#include "gx/text/date.h"
#include "gx/text/debug.h"
#include "gx/text/session_state.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"

namespace {

// What differs between the messages of open and of reopen.
struct operation_t {
  const char* name;     // "open file", "reopen file"
  const char* refused;  // of a data file that cannot be opened
  const char* letter;   // of a deleted object
};
constexpr operation_t op_open{"open file", "!!! file_open  file not opened : ", "O"};
constexpr operation_t op_reopen{"reopen file", "!!! file_reopen  file not reopen : ", "R"};

gx_file_io_rec_t& slot_of(gx_file_index_t file_index) {
  return gx_files.filear[static_cast<std::size_t>(file_index)];
}

void close_stream(gx_file_io_rec_t& slot) {
  if (slot.file_io_id != nullptr) std::fclose(slot.file_io_id);
  slot.file_io_id = nullptr;
}

void close_all_streams() {
  for (auto& slot : gx_files.filear) close_stream(slot);
}

void check_initialised() {
  if (!gx_session.init_done) gx_set_status(gx_code::init_not_done);
}

// One line to the debug file and one to the user, the same name in both.
void report(const char* debug_text, const char* text, std::string_view name) {
  const int len = static_cast<int>(name.size());
  gx_debug("%s'%.*s'\n", debug_text, len, name.data());
  std::printf("%s'%.*s'\n", text, len, name.data());
}

gx_file_index_t reserve_slot(const char* debug_text, const char* text, std::string_view name) {
  gx_at_fatal_stop(close_all_streams);
  if (gx_files.num_file_open >= gx_max_files) {
    report(debug_text, text, name);
    gx_set_status(gx_code::too_many_files);
  }
  const auto file_index = static_cast<gx_file_index_t>(++gx_files.num_file_open);
  slot_of(file_index) = {};
  gx_files.cur_file = file_index;
  return file_index;
}

std::shared_ptr<gx_file_gene_recf_t> empty_file(gx_file_index_t file_index) {
  auto file = std::make_shared<gx_file_gene_recf_t>();
  const auto now = gx_get_date();
  file->day = now.day;
  file->month = now.month;
  file->year = now.year;
  file->hour = now.hour;
  file->minute = now.minute;
  file->file_index = file_index;
  return file;
}

void put_names(gx_file_io_rec_t& slot, std::string_view dirname, std::string_view filetype,
               const gx_file_version_t& names) {
  slot.dirname = gx_string(dirname);
  slot.filetype = gx_string(filetype);
  slot.version_found = names.found;
  slot.version = names.version;
  slot.link_value = names.link_value;
  slot.file_pathname = names.file_pathname;
  slot.link_pathname = names.link_pathname;
}

void put_file(gx_file_index_t file_index, std::shared_ptr<gx_file_gene_recf_t> file) {
  auto& slot = slot_of(file_index);
  file->file_index = file_index;
  slot.start_buf_ptr = std::move(file);
  slot.already_open_ok = true;
  slot.file_updated = false;
}

// Reads the data file that a link file names.
gx_load_t load_version(const gx_file_version_t& names) {
  if (!names.valid) {
    gx_load_t load;
    load.code = gx_code::file_data_invalid;
    load.fault = gx_load_fault::other;
    load.message = std::string(gx_view(names.link_pathname)) +
                   ": the link file names no valid version of a file";
    return load;
  }
  const auto path = gx_view(names.file_pathname);
  std::FILE* stream = gx_popen_file(path, 'R', true);
  auto load = gx_load_stream(stream, path);
  if (stream != nullptr) std::fclose(stream);
  return load;
}

[[noreturn]] void stop_with(const gx_load_t& load, const gx_file_version_t& names,
                            const operation_t& op) {
  const auto path = gx_view(names.file_pathname);
  const int len = static_cast<int>(path.size());
  switch (load.fault) {
    case gx_load_fault::unreadable:
      ++gx_session.num_errors;
      gx_debug("%s\"%.*s\" \n", op.refused, len, path.data());
      break;
    case gx_load_fault::revision:
      gx_debug(" !! soft_rev error in %s in = '%.*s'\n", op.name, len, path.data());
      std::printf("!! Software Revision Error:%f(instead of:%f) in %s = '%.*s'\n",
                  static_cast<double>(load.revision), 2.0, op.name, len, path.data());
      break;
    case gx_load_fault::end_marker:
      gx_debug(" ## error in %s in = '%.*s'\n", op.name, len, path.data());
      break;
    case gx_load_fault::record_kind:
      std::fprintf(stderr, " Error :  readrectype : got unexpected  type=%d (%d,%d) \n", load.value,
                   1, 58);
      break;
    case gx_load_fault::deleted:
      gx_debug(" gx_file_open : object invalid: %s_11:  obj_id:%d\tstatus:%d  deleted:%d \n",
               op.letter, load.object_id, load.value, gx_flag_deleted);
      break;
    case gx_load_fault::none:
    case gx_load_fault::other:
      break;
  }
  std::printf("!! error in %s : %s\n", op.name, load.message.c_str());
  gx_set_status(load.code);
}

bool same_file(const gx_file_io_rec_t& slot, const gx_file_version_t& names) {
  return slot.already_open_ok && gx_string_iden_string(slot.file_pathname, names.file_pathname);
}

void check_reopen(gx_file_index_t file_index, std::string_view dirname) {
  check_initialised();
  if (file_index > gx_files.num_file_open) {
    report(" ## error in open file (too_many_files) = ",
           " !! error in open file (too_many_files) = ", dirname);
    gx_set_status(gx_code::too_many_files);
  }
  if (file_index < 1) gx_set_status(gx_code::file_id_invalid);
}

}  // namespace

gx_file_index_t gx_file_open(std::string_view dirname, std::string_view filetype) {
  const auto checked_dirname = gx_string(dirname);
  const auto checked_filetype = gx_string(filetype);
  check_initialised();
  const auto file_index = reserve_slot(
      " ## error in open file = ", " !! error in open file (too_many_files) = ", dirname);
  const auto names = gx_file_get_file_version(gx_view(checked_dirname), gx_view(checked_filetype));
  put_names(slot_of(file_index), dirname, filetype, names);
  if (!names.found) {
    gx_file_create_new(file_index);
    return file_index;
  }
  auto load = load_version(names);
  if (load.code != gx_code::all_is_ok) stop_with(load, names, op_open);
  put_file(file_index, std::move(load.file));
  return file_index;
}

gx_file_index_t gx_file_try_open(std::string_view dirname, std::string_view filetype,
                                 std::string& why) {
  check_initialised();
  why.clear();
  const auto names = gx_file_get_file_version(dirname, filetype);
  gx_load_t load;
  if (names.found) load = load_version(names);
  if (load.code != gx_code::all_is_ok) {
    why = load.message;
    return 0;
  }
  const auto file_index = reserve_slot(
      " ## error in open file = ", " !! error in open file (too_many_files) = ", dirname);
  put_names(slot_of(file_index), dirname, filetype, names);
  if (names.found) {
    put_file(file_index, std::move(load.file));
  } else {
    gx_file_create_new(file_index);
  }
  return file_index;
}

bool gx_file_reopen(gx_file_index_t file_index, std::string_view dirname,
                    std::string_view filetype) {
  check_reopen(file_index, dirname);
  gx_files.cur_file = file_index;
  auto& slot = slot_of(file_index);
  const auto names = gx_file_get_file_version(dirname, filetype);
  if (!names.found) {
    gx_file_close(file_index);
    put_names(slot, dirname, filetype, names);
    gx_file_create_new(file_index);
    return false;
  }
  if (same_file(slot, names)) {
    gx_debug_line("!!! file_reopen  file not reopen : identical \"");
    return true;
  }
  put_names(slot, dirname, filetype, names);
  slot.already_open_ok = false;
  auto load = load_version(names);
  if (load.code != gx_code::all_is_ok) stop_with(load, names, op_reopen);
  put_file(file_index, std::move(load.file));
  return true;
}

bool gx_file_try_reopen(gx_file_index_t file_index, std::string_view dirname,
                        std::string_view filetype, std::string& why) {
  check_reopen(file_index, dirname);
  why.clear();
  const auto names = gx_file_get_file_version(dirname, filetype);
  if (!names.found) {
    why = std::string(gx_view(names.link_pathname)) + ": no such file";
    return false;
  }
  auto& slot = slot_of(file_index);
  if (!same_file(slot, names)) {
    auto load = load_version(names);
    if (load.code != gx_code::all_is_ok) {
      why = load.message;
      return false;
    }
    put_names(slot, dirname, filetype, names);
    put_file(file_index, std::move(load.file));
  } else {
    gx_debug_line("!!! file_reopen  file not reopen : identical \"");
  }
  gx_files.cur_file = file_index;
  return true;
}

void gx_check_file_to_close(gx_file_index_t file_index) {
  if (file_index < 1 || file_index > gx_max_files) {
    gx_debug(" gx_file_close : sfile_index : %d\n", file_index);
    gx_set_status(gx_code::file_data_invalid);
  }
  check_initialised();
}

void gx_file_close(gx_file_index_t file_index) {
  gx_check_file_to_close(file_index);
  close_stream(slot_of(file_index));
}

gx_file_index_t gx_file_create_bye(std::string_view data_path) {
  const auto file_index = reserve_slot(
      " ## error in create file = ", " !! error in create file (too_many_files)= ", data_path);
  auto& slot = slot_of(file_index);
  slot.file_pathname = gx_string(data_path);
  slot.file_io_id = gx_popen_file(data_path, 'W', false);
  if (slot.file_io_id == nullptr) {
    gx_debug("!!! file_create_bye  file impossible to open : \"%.*s\" \n",
             static_cast<int>(data_path.size()), data_path.data());
    gx_set_status(gx_code::file_open_invalid);
  }
  gx_file_create_new(file_index);
  return file_index;
}

void gx_file_create_new(gx_file_index_t file_index) {
  if (file_index < 1 || file_index > gx_files.num_file_open || file_index > gx_max_files) {
    report(" ## error in create file = ", " !! error in create file = ", "");
    gx_set_status(gx_code::too_many_files);
  }
  auto& slot = slot_of(file_index);
  slot.file_updated = false;
  slot.already_open_ok = false;
  slot.start_buf_ptr = empty_file(file_index);
}
