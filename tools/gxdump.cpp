// gxdump: the records of a GX file as readable text, field by field in the order of the file.
//
//   gxdump FILE            a data file, e.g. adder/sheet.gx_3
//   gxdump DIRECTORY BASE  the current version of a file, e.g. adder sheet
//   gxdump --source ...    the same and its symbols as a description for gxmake
//   gxdump --format        the format of GX files
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "gx/db/file/format_text.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/record_tables.h"
#include "gx/db/objects_of.h"
#include "gx/text/text_files.h"
#include "gxmake/object_file.h"
#include "platform/usage.h"

namespace {

void print_text(std::string_view text) {
  std::printf("\"%.*s\"", static_cast<int>(text.size()), text.data());
}

void print_points(std::span<const gx_pointreal_t> points) {
  for (const auto& point : points) std::printf(" (%d, %d)", point.x, point.y);
}

void print_field(const void* record, const gx_field_t& field) {
  if (field.kind == gx_kind::zeros4) return;
  std::printf("  %-18.*s", static_cast<int>(field.name.size()), field.name.data());
  switch (field.kind) {
    case gx_kind::real:
      std::printf("%g", static_cast<double>(gx_number<float>(record, field)));
      break;
    case gx_kind::point: {
      const auto& point = gx_member<gx_pointreal_t>(record, field);
      std::printf("(%d, %d)", point.x, point.y);
      break;
    }
    case gx_kind::bounds: {
      const auto& box = gx_member<gx_boundsreal_t>(record, field);
      std::printf("(%d, %d) to (%d, %d)", box.xmin, box.ymin, box.xmax, box.ymax);
      break;
    }
    case gx_kind::string:
    case gx_kind::name:
    case gx_kind::value:
      print_text(gx_field_text(record, field));
      break;
    case gx_kind::points5:
    case gx_kind::points16:
      print_points(gx_field_points(record, field));
      break;
    default:
      std::printf("%d", gx_field_number(record, field));
      break;
  }
  std::putchar('\n');
}

void print_fields(const void* record, gx_fields_t fields) {
  for (const auto& field : fields) print_field(record, field);
}

constexpr tool_t tool = {
    "gxdump",
    "usage: gxdump [-C DIRECTORY] FILE\n"
    "       gxdump [-C DIRECTORY] DIRECTORY BASE\n"
    "       gxdump [-C DIRECTORY] --source [--all] FILE | DIRECTORY BASE\n"
    "       gxdump --format\n"
    "Prints the records of a GX file as text, field by field: FILE, or the version of\n"
    "DIRECTORY/BASE.gx that is current.\n"
    "  --source  prints a sheet and the symbols that it names as a description: gxmake makes\n"
    "      files with the same objects of it\n"
    "  --all  with the sheets below and their symbols, each once\n"
    "  -C DIRECTORY  works there: symbols are found below it\n"
    "  --format  prints the format of GX files, as tables in Markdown\n"
    "  --help, --version\n"};

// --- the records

void print_records(const gx_file_gene_recf_t& file, const std::string& path) {
  std::printf("%s\n", path.c_str());
  print_fields(&file, gx_header_fields());
  for (const auto* object : file.ptr_to_ar_objindex) {
    const auto type = gx_type_name(object->object_type);
    std::printf("\nobject %d : %.*s\n", object->object_id, static_cast<int>(type.size()),
                type.data());
    print_fields(object, gx_general_fields());
    print_fields(object, gx_tail_fields(object->object_type));
  }
}

// --- the description

// The file's name below the present directory; "" where it lies elsewhere.
std::string name_below(const std::string& path) {
  if (path.starts_with(gx_product_word)) return {};
  const auto name =
      std::filesystem::path(path).is_absolute()
          ? std::filesystem::path(path).lexically_relative(std::filesystem::current_path())
          : std::filesystem::path(path).lexically_normal();
  return name.empty() || *name.begin() == ".." ? std::string{} : name.string();
}

class source_printer {
 public:
  explicit source_printer(bool all) : all_(all) {}

  // Prints the file and those it names, each once; false when one cannot be read. A file that lies
  // elsewhere has its whole path for a name when it is the one asked for, else it is only named.
  bool print(const std::string& path, bool is_asked = true) {
    std::string name = name_below(path);
    if (!seen_.insert(name.empty() ? path : name).second) return true;
    if (name.empty() && is_asked) name = path;
    if (name.empty()) {
      std::printf("# %s lies elsewhere\n", path.c_str());
      return true;
    }
    const auto load = gx_load_file(path);
    if (load.code != gx_code::all_is_ok) {
      tool_complain(tool, load.message);
      return false;
    }
    tool_print(stdout, gxm_source_text(*load.file, name));
    bool all_there = true;
    for (const int id : lb_symbols(*load.file)) {
      const auto* symbol = gx_object_as<gx_object_symbol_rec_t>(*load.file, id);
      all_there &= print_symbol(std::string(gx_view(symbol->path)));
    }
    return all_there;
  }

 private:
  bool print_symbol(const std::string& path) {
    bool all_there = print(path, false);
    const auto sheet =
        gx_file_get_file_version(std::filesystem::path(path).parent_path().string(), "sheet");
    if (all_ && sheet.found) all_there &= print(std::string(gx_view(sheet.file_pathname)), false);
    return all_there;
  }

  bool all_;
  std::set<std::string> seen_;
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string_view> words;
  std::string_view directory;
  bool source = false, all = false, format = false;
  const tool_option_t options[] = {{.name = "-C", .value = &directory},
                                   {.name = "--source", .flag = &source},
                                   {.name = "--all", .flag = &all},
                                   {.name = "--format", .flag = &format}};
  if (const auto ended = tool_read(tool, argc, argv, options, words)) return *ended;
  if (format && words.empty()) {
    tool_print(stdout, gx_format_text());
    return tool_end(tool, 0);
  }
  if (format || words.empty() || words.size() > 2)
    return tool_usage_error(tool, "a FILE, or a DIRECTORY and a BASE, is wanted");
  if (all && !source) return tool_usage_error(tool, "--all goes with --source");
  if (!directory.empty() && chdir(std::string(directory).c_str()) != 0) {
    tool_complain(tool, std::string(directory) + ": " + std::strerror(errno));
    return 1;
  }
  std::string path(words[0]);
  if (words.size() == 2) {
    const auto names = gx_file_get_file_version(words[0], words[1]);
    path = gx_view(names.file_pathname);
    if (!names.found || !names.valid) {
      tool_complain(tool, names.found ? names.why
                                      : std::string(gx_view(names.link_pathname)) +
                                            ": names no version of a file");
      return 1;
    }
  }
  if (source) return tool_end(tool, source_printer(all).print(path) ? 0 : 1);

  const auto load = gx_load_file(path);
  if (load.code != gx_code::all_is_ok) {
    tool_complain(tool, load.message);
    return 1;
  }
  print_records(*load.file, path);
  return tool_end(tool, 0);
}
