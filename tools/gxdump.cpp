// gxdump: the records of a GX file as readable text, field by field in the order of the file.
//
//   gxdump FILE            a data file, e.g. adder/sheet.gx_3
//   gxdump DIRECTORY BASE  the current version of a file, e.g. adder sheet
#include <cstdio>
#include <string>
#include <vector>

#include "gx/db/files.h"
#include "gx/db/record_tables.h"
#include "tools/usage.h"

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

constexpr tool_t tool = {"gxdump",
                         "usage: gxdump FILE\n"
                         "       gxdump DIRECTORY BASE\n"
                         "Prints the records of a GX file as text, field by field: FILE, or the\n"
                         "version of DIRECTORY/BASE.gx that is current.\n"
                         "  --help, --version\n"};

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string_view> words;
  if (const auto ended = tool_read(tool, argc, argv, {}, words)) return *ended;
  if (words.empty() || words.size() > 2)
    return tool_usage_error(tool, "a FILE, or a DIRECTORY and a BASE, is wanted");
  std::string path(words[0]);
  if (words.size() == 2) {
    const auto names = gx_file_get_file_version(words[0], words[1]);
    if (!names.found || !names.valid) {
      std::fprintf(stderr, "gxdump: %s: names no version of a file\n", names.link_pathname.char_);
      return 1;
    }
    path = gx_view(names.file_pathname);
  }

  const auto load = gx_load_file(path);
  if (load.code != gx_code::all_is_ok) {
    std::fprintf(stderr, "gxdump: %s\n", load.message.c_str());
    return 1;
  }
  std::printf("%s\n", path.c_str());
  print_fields(load.file.get(), gx_header_fields());
  for (const auto* object : load.file->ptr_to_ar_objindex) {
    const auto type = gx_type_name(object->object_type);
    std::printf("\nobject %d : %.*s\n", object->object_id, static_cast<int>(type.size()),
                type.data());
    print_fields(object, gx_general_fields());
    print_fields(object, gx_tail_fields(object->object_type));
  }
  return tool_end(tool, 0);
}
