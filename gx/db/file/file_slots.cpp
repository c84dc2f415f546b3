// The file table: opening the current version of a file into a slot, pointing a slot at another
// file, closing. What stops the program is a try that failed.
//
// A data file is read whole when it is opened and its stream is closed at once: nothing is read
// from it later, and the slot's `file_io_id` is open only while a save writes its target.
#include "gx/db/file/file_slots.h"

#include "gx/db/file/file_state.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/object_access.h"
#include "gx/text/at.h"
#include "gx/text/date.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "platform/files.h"

namespace {

// What differs between the messages of open and of reopen.
struct operation_t {
  const char* name;     // "open file", "reopen file"
  const char* refused;  // of a data file that cannot be opened
  const char* letter;   // of a deleted object
};
constexpr operation_t op_open{"open file", "!!! file_open  file not opened : ", "O"};
constexpr operation_t op_reopen{"reopen file", "!!! file_reopen  file not reopen : ", "R"};

gx_file_io_rec_t& slot_of(gx_file_index_t file_index) { return gx_at(gx_files.filear, file_index); }

void close_all_streams() {
  for (auto& slot : gx_files.filear) slot.file_io_id.reset();
}

void check_initialised() {
  if (!gx_session.init_done) gx_set_status(gx_code::init_not_done);
}

// One line to the debug file and one to the user, the same name in both.
void report(const char* debug_text, const char* text, std::string_view name) {
  const int len = static_cast<int>(name.size());
  gx_trace(debug_text, "'", name, "'");
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
  gx_set_file_date(*file, gx_get_date());
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
    load.message = names.why;
    return load;
  }
  const auto path = gx_view(names.file_pathname);
  const x_file stream(gx_popen_file(path, 'R', true));
  return gx_load_stream(stream.get(), path);
}

// A file that was looked for, and what became of reading it.
struct attempt_t {
  gx_file_version_t names;
  gx_load_t load;
};

[[noreturn]] void stop_with(const attempt_t& attempt, const operation_t& op) {
  const auto& [names, load] = attempt;
  const auto path = gx_view(names.file_pathname);
  const int len = static_cast<int>(path.size());
  switch (load.fault) {
    case gx_load_fault::unreadable:
      ++gx_session.num_errors;
      gx_trace(op.refused, "\"", path, "\" ");
      break;
    case gx_load_fault::revision:
      gx_trace(" !! soft_rev error in ", op.name, " in = '", path, "'");
      std::printf("!! Software Revision Error:%f(instead of:%f) in %s = '%.*s'\n",
                  static_cast<double>(load.revision), 2.0, op.name, len, path.data());
      break;
    case gx_load_fault::end_marker:
      gx_trace(" ## error in ", op.name, " in = '", path, "'");
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

// Opens into a new slot; 0 when the file is there and cannot be used.
gx_file_index_t open_slot(std::string_view dirname, std::string_view filetype, attempt_t& attempt) {
  check_initialised();
  attempt.names = gx_file_get_file_version(dirname, filetype);
  if (attempt.names.found) attempt.load = load_version(attempt.names);
  if (attempt.load.code != gx_code::all_is_ok) return 0;
  const auto file_index = reserve_slot(
      " ## error in open file = ", " !! error in open file (too_many_files) = ", dirname);
  put_names(slot_of(file_index), dirname, filetype, attempt.names);
  if (attempt.names.found) {
    put_file(file_index, std::move(attempt.load.file));
  } else {
    gx_file_create_new(file_index);
  }
  return file_index;
}

// Points the slot at the file; false when that is missing or cannot be used.
bool reopen_slot(gx_file_index_t file_index, std::string_view dirname, std::string_view filetype,
                 attempt_t& attempt) {
  check_reopen(file_index, dirname);
  attempt.names = gx_file_get_file_version(dirname, filetype);
  if (!attempt.names.found) return false;
  auto& slot = slot_of(file_index);
  if (same_file(slot, attempt.names)) {
    gx_debug_line("!!! file_reopen  file not reopen : identical \"");
  } else {
    attempt.load = load_version(attempt.names);
    if (attempt.load.code != gx_code::all_is_ok) return false;
    put_names(slot, dirname, filetype, attempt.names);
    put_file(file_index, std::move(attempt.load.file));
  }
  gx_files.cur_file = file_index;
  return true;
}

}  // namespace

gx_file_index_t gx_file_open(std::string_view dirname, std::string_view filetype) {
  const gx_string_record_t checked[] = {gx_string(dirname), gx_string(filetype)};
  attempt_t attempt;
  const auto file_index = open_slot(gx_view(checked[0]), gx_view(checked[1]), attempt);
  if (file_index == 0) stop_with(attempt, op_open);
  return file_index;
}

gx_file_index_t gx_file_try_open(std::string_view dirname, std::string_view filetype,
                                 std::string& why) {
  attempt_t attempt;
  const auto file_index = open_slot(dirname, filetype, attempt);
  why = attempt.load.message;
  return file_index;
}

bool gx_file_reopen(gx_file_index_t file_index, std::string_view dirname,
                    std::string_view filetype) {
  attempt_t attempt;
  if (reopen_slot(file_index, dirname, filetype, attempt)) return true;
  if (attempt.names.found) stop_with(attempt, op_reopen);
  gx_file_close(file_index);
  put_names(slot_of(file_index), dirname, filetype, attempt.names);
  gx_file_create_new(file_index);
  gx_files.cur_file = file_index;
  return false;
}

bool gx_file_try_reopen(gx_file_index_t file_index, std::string_view dirname,
                        std::string_view filetype, std::string& why) {
  attempt_t attempt;
  const bool reopened = reopen_slot(file_index, dirname, filetype, attempt);
  why = attempt.names.found ? attempt.load.message
                            : std::string(gx_view(attempt.names.link_pathname)) + ": no such file";
  if (reopened) why.clear();
  return reopened;
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
  slot_of(file_index).file_io_id.reset();
}

gx_file_index_t gx_file_create_bye(std::string_view data_path) {
  const auto file_index = reserve_slot(
      " ## error in create file = ", " !! error in create file (too_many_files)= ", data_path);
  auto& slot = slot_of(file_index);
  slot.file_pathname = gx_string(data_path);
  slot.file_io_id.reset(gx_popen_file(data_path, 'W', false));
  if (!slot.file_io_id) {
    gx_trace("!!! file_create_bye  file impossible to open : \"", data_path, "\" ");
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
