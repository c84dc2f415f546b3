// kvdump: a design file as readable text, every field of every record in the order of the file.
//
//   kvdump FILE      for example my_design/design_kv
//
// A damaged or truncated file is named as such, and the status is 1.
#include <fcntl.h>
#include <unistd.h>

#include <concepts>
#include <cstdio>

#include "expand/design_records.h"
#include "kvi/load.h"

namespace {

void print_text(std::string_view text) {
  std::printf("\"%.*s\"", static_cast<int>(text.size()), text.data());
}

void print_value(float value) { std::printf("%g", static_cast<double>(value)); }
void print_value(const gx_string_record_t& string) { print_text(gx_view(string)); }
void print_value(const kv_signal_state_rec& signal) {
  std::printf("state %d, time %d, fixed %d", signal.state, signal.time, signal.fixed);
}
template <std::integral Number>
void print_value(Number value) {
  std::printf("%d", static_cast<int>(value));
}
template <typename Number, std::size_t Count>
void print_value(const Number (&values)[Count]) {
  for (std::size_t i = 0; i < Count; ++i) {
    if (i > 0) std::printf(", ");
    print_value(values[i]);
  }
}

template <typename Record>
void print_fields(const kvi_design_t& design, const Record& record) {
  kv_for_each_field(record, [&](const auto& field) {
    std::printf("  %-18.*s ", static_cast<int>(field.name.size()), field.name.data());
    print_value(record.*field.member);
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(record.*field.member)>,
                                 std::int32_t>) {
      if (field.target == kv_array::strings && record.*field.member != 0) {
        std::printf(" ");
        print_text(design.text(record.*field.member));
      }
    }
    std::printf("\n");
  });
}

template <typename Record>
void print_records(const kvi_design_t& design, std::string_view name) {
  for (std::int32_t i = 1; i <= design.count<Record>(); ++i) {
    std::printf("%.*s %d\n", static_cast<int>(name.size()), name.data(), i);
    if constexpr (std::is_same_v<Record, kv_string_record_t>) {
      std::printf("  ");
      print_text(design.text(i));
      std::printf("\n");
    }
    print_fields(design, design.get<Record>(i));
  }
}

void print_design(const kvi_design_t& design) {
  std::printf("general information\n");
  print_fields(design, design.info());
  for (std::size_t part = 0; part < std::size(kv_list_parts); ++part) {
    const std::string_view name = kv_list_parts[part].name;
    int n = 0;
    for (const kv_prop_type_record_t& entry : design.list(part)) {
      std::printf("%.*s %d\n", static_cast<int>(name.size()), name.data(), ++n);
      print_fields(design, entry);
    }
  }
  kv_for_each_part([&](const auto& part) {
    using record = typename std::remove_cvref_t<decltype(part)>::record;
    if constexpr (!std::is_same_v<record, char>) print_records<record>(design, part.name);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: kvdump FILE\n");
    return 2;
  }
  const int fd = ::open(argv[1], O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    std::perror(argv[1]);
    return 1;
  }
  kvi_design_t design;
  const kvi_load_result result = design.load(fd);
  ::close(fd);
  switch (result) {
    case kvi_load_result::loaded:
      print_design(design);
      return 0;
    case kvi_load_result::too_short:
      std::fprintf(stderr, "%s: truncated\n", argv[1]);
      break;
    case kvi_load_result::damaged:
      std::fprintf(stderr, "%s: no design file, or damaged\n", argv[1]);
      break;
  }
  return 1;
}
