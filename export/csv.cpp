#include "export/csv.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

#include "export/output.h"
#include "export/tables.h"
#include "platform/files.h"

namespace {

struct csv_file_t {
  explicit csv_file_t(std::string file_path)
      : path(std::move(file_path)), file(path), out(std::make_unique<kv_output_t>(file.get())) {}
  std::string path;
  x_fresh_file file;
  std::unique_ptr<kv_output_t> out;
};

// Quoted where a reader would take it for more than one value.
void put_text(kv_output_t& out, std::string_view text) {
  if (text.find_first_of(",\"\r\n") == text.npos) {
    out << text;
    return;
  }
  out << '"';
  for (const char c : text) {
    if (c == '"') out << '"';
    out << c;
  }
  out << '"';
}

void put_cell(kv_output_t& out, const kv_cell_t& cell) {
  if (const auto* text = std::get_if<std::string_view>(&cell)) put_text(out, *text);
  if (const auto* number = std::get_if<std::int64_t>(&cell)) out << *number;
  if (const auto* real = std::get_if<double>(&cell)) out << static_cast<float>(*real);
}

// All files or none take their places, as far as writing them may fail.
std::string put_in_place(std::vector<csv_file_t>& files) {
  for (csv_file_t& file : files) {
    file.out.reset();
    if (!file.file.close()) return file.path + ": " + x_why(errno);
  }
  for (csv_file_t& file : files)
    if (!file.file.put_in_place()) return file.path + ": " + x_why(errno);
  return "";
}

}  // namespace

std::string kv_write_csv(const kvi_design_t& design, const std::string& from,
                         const std::string& directory) {
  if (::mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST)
    return directory + ": " + x_why(errno);
  std::vector<csv_file_t> files;
  for (const kv_table_t& table : kv_tables) {
    const std::string path = directory + "/" + std::string(table.name) + ".csv";
    csv_file_t& file = files.emplace_back(path);
    if (!file.file) return path + ": " + x_why(errno);
    std::string head(table.columns);
    std::ranges::replace(head, ' ', ',');
    *file.out << head << "\r\n";
  }
  const auto row = [&](kv_table table, std::span<const kv_cell_t> cells) {
    kv_output_t& out = *gx_at(files, table).out;
    kv_between_t between(",");
    for (const kv_cell_t& cell : cells) {
      out << between.next();
      put_cell(out, cell);
    }
    out << "\r\n";
  };
  kv_table_writer_t(design, row).write();
  if (!design.is_unchanged()) return kvi_changed_message(from);
  return put_in_place(files);
}
