// Names of GX files: versions, link files and the paths of symbols.
#include "gx/db/file/link_file.h"

#include <algorithm>
#include <cerrno>

#include "gx/text/messages/debug.h"
#include "gx/text/messages/session_state.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/text/tokens.h"
#include "platform/files.h"

namespace {

// A number of digits only; nothing else is a version.
gx_parsed<std::int16_t> version_of(std::string_view digits) {
  if (digits.empty() || digits.find(' ') != std::string_view::npos) return {0, true};
  return gx_string_to_int16(digits);
}

std::string_view after_first(std::string_view text) { return text.empty() ? text : text.substr(1); }

// The last "/" that a name beginning with S or s follows: it ends the directory of a data path.
std::size_t directory_end(std::string_view path) {
  for (std::size_t i = path.size(); i-- > 0;) {
    if (path[i] == '/' && i + 1 < path.size() && gx_upper_case(path[i + 1]) == 'S') return i;
  }
  return std::string_view::npos;
}

// Callers give paths that have such a "/"; of others the first character is left.
std::string_view directory_of(std::string_view path) {
  const auto end = directory_end(path);
  return path.substr(0, end == std::string_view::npos ? 1 : end);
}

std::size_t last_gx_suffix(std::string_view path) {
  constexpr std::string_view suffix = ".gx_";
  for (std::size_t i = path.size(); i-- > 0;) {
    if (path.size() - i >= suffix.size() && gx_iden(path.substr(i, suffix.size()), suffix))
      return i;
  }
  return std::string_view::npos;
}

gx_string_record_t link_path_of(std::string_view dirname, std::string_view filetype) {
  gx_string_record_t path;
  gx_concat_all(path, dirname, "/", filetype, ".gx");
  return path;
}

gx_string_record_t link_value_of(std::int16_t version) {
  gx_string_record_t digits;
  gx_int16_to_string(version, digits);
  gx_string_record_t value;
  gx_concat_all(value, "_", gx_view(digits));
  return value;
}

gx_string_record_t data_path_of(const gx_string_record_t& link_path,
                                const gx_string_record_t& link_value) {
  gx_string_record_t path;
  gx_concat_all(path, gx_view(link_path), gx_view(link_value));
  return path;
}

struct link_read_t {
  int error = 0;  // errno of one that could not be opened or read
  bool has_line = false;
};

// An empty link file is counted as an error.
link_read_t read_link(std::string_view link_path, gx_string_record_t& link_value) {
  link_value = {};
  // Looked at once for each sheet of a run: opened without the wait of gx_popen_file.
  const x_file link = x_open_regular_file(std::string(gx_view(gx_resolve_path(link_path))));
  if (!link) return {errno};
  gx_string_record_t line;
  if (!gx_read_one_line(link.get(), line)) {
    if (std::ferror(link.get()) != 0) return {errno};
    ++gx_session.num_errors;
    return {};
  }
  std::int32_t pos = 1;
  if (!gx_rd_string_t(line, " ,", link_value, pos)) link_value = {};
  return {0, true};
}

}  // namespace

gx_file_version_t gx_file_get_file_version(std::string_view dirname, std::string_view filetype) {
  gx_file_version_t names;
  names.link_pathname = link_path_of(dirname, filetype);
  const link_read_t read = read_link(gx_view(names.link_pathname), names.link_value);
  const bool is_hidden = read.error != 0 && !x_is_missing(read.error);
  names.found = is_hidden || names.link_value.len > 0;
  if (names.found) {
    const auto number = version_of(after_first(gx_view(names.link_value)));
    names.valid = !number.error;
    names.version = number.value;
  } else {
    names.valid = true;
    names.version = 1;
    names.link_value = link_value_of(names.version);
  }
  // A path that was cut names another file than the one that was asked for.
  const auto length = dirname.size() + 1 + filetype.size() + 3 + gx_view(names.link_value).size();
  if (length > gx_max_path) names.valid = false;
  if (names.found && !names.valid) {
    names.why = std::string(gx_view(names.link_pathname)) +
                (is_hidden ? ": cannot be read: " + x_why(read.error)
                           : std::string(": the link file names no valid version of a file"));
  }
  names.file_pathname = data_path_of(names.link_pathname, names.link_value);
  return names;
}

gx_file_version_t gx_file_new_file_version(std::string_view dirname, std::string_view filetype,
                                           std::int16_t version) {
  gx_file_version_t names;
  names.found = true;
  names.valid = version < INT16_MAX;
  names.version = names.valid ? static_cast<std::int16_t>(version + 1) : version;
  names.link_pathname = link_path_of(dirname, filetype);
  names.link_value = link_value_of(names.version);
  names.file_pathname = data_path_of(names.link_pathname, names.link_value);
  return names;
}

bool gx_read_gx_link(std::string_view link_path, gx_string_record_t& link_value) {
  const link_read_t read = read_link(link_path, link_value);
  return read.error == 0 && read.has_line;
}

bool gx_add_gx_link(std::string_view link_path, std::string_view link_value) {
  const std::string path(gx_view(gx_resolve_path(link_path)));
  if (x_replace_file(path, std::string(link_value) + "        \n")) return true;
  ++gx_session.num_errors;
  gx_trace("!!! ( add_gx_link ) impossible to open new link_file  : \"", link_path, "\" ");
  return false;
}

gx_link_test_t gx_check_gx_link(std::string_view data_path) {
  gx_link_test_t result;
  gx_copy_string(directory_of(data_path), result.directory);
  const auto cut = data_path.rfind('_');
  if (cut == std::string_view::npos) return result;

  gx_string_record_t link_value;
  const auto errors = gx_session.num_errors;
  const bool found = gx_read_gx_link(data_path.substr(0, cut), link_value);
  gx_session.num_errors = errors;  // an empty link file is an answer here, not an error
  if (!found || link_value.len == 0) return result;

  result.link_found = true;
  const auto linked = version_of(after_first(gx_view(link_value)));
  const auto asked = version_of(data_path.substr(cut + 1));
  result.current = !linked.error && !asked.error && linked.value == asked.value;
  return result;
}

gx_symbol_path_t gx_get_path_n0version(std::string_view path) {
  gx_symbol_path_t result;
  gx_copy_string(directory_of(path), result.directory);
  const auto slash = directory_end(path);
  const auto name_start = slash == std::string_view::npos ? 0 : slash + 1;
  const auto suffix = last_gx_suffix(path);
  if (suffix == std::string_view::npos || suffix < name_start) {
    gx_copy_string(path.substr(name_start), result.name);
    result.error = true;
    return result;
  }
  gx_copy_string(path.substr(name_start, suffix - name_start), result.name);
  auto digits = path.substr(suffix + 4);
  digits = digits.substr(0, std::min(digits.find_first_not_of("0123456789"), digits.size()));
  const auto number = version_of(digits);
  result.version = number.value;
  result.error = number.error;
  return result;
}
