// Making and opening generated designs.
#include "bench/bench_design.h"

#include <fcntl.h>
#include <unistd.h>

#include "expand/store.h"
#include "gx/db/file/file_slots.h"
#include "gx/db/file/record_codec.h"
#include "gx/display/window.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "gxmake/memory_array.h"
#include "tests/support/make_design.h"

namespace {
void keep(kv_list_t<kv_prop_type_record_t>& list, std::string_view name) {
  list.entry[static_cast<std::size_t>(list.count++)] = {gx_string(name), gx_string("S")};
}
}  // namespace

bench_design::bench_design(int blocks, int variants) {
  make_design(directory_, gxm_memory_array(blocks, variants));
  std::filesystem::current_path(directory_.path());
  gx_reset_state();
  gx_init_nograph();
  kv_sext = kv_defref_exp_rec_t{};
  kv_sext.store_size = kv_max_records;
  kv_sext.primitive.entry[0].name = gx_string("CLASS");
  kv_sext.primitive.count = 1;
  keep(kv_sext.property_instance, "CLASS");
  keep(kv_sext.property_instance, "VALUE");
  keep(kv_sext.property_pin, "PINTYPE");
  keep(kv_sext.property_net, "NET");
  kv_sext.designfile = ::open("array/design_kv", O_RDWR | O_CREAT, 0660);
  // Nobody waits for a line: many are written together.
  static constexpr gx_front_t no_user = {
      .keeps_lines = false, .shows_pictures = false, .may_wait = false};
  gx_set_front(no_user);
  gx_vext.cursessfile = std::fopen("array/current_session", "w");
  sheets_[0].file_index = gx_file_open("array", "sheet");
}

bench_design::~bench_design() {
  ::close(kv_sext.designfile);
  std::fclose(gx_vext.cursessfile);
  gx_vext.cursessfile = nullptr;
  std::filesystem::current_path("/");
}

kv_run_result bench_design::run(bool gen_data) {
  return kv_run_expansion({.setup = kv_sext,
                           .design = kv_sext,
                           .sheets = sheets_,
                           .expand_level = expand_level_,
                           .macro_level = macro_level_,
                           .origins = &kv_sext.origins},
                          kv_sext.designfile, gen_data);
}

std::string wide_sheet_bytes(int objects) {
  // A wire is a net, its property family, a segment and the vertices of its two ends.
  constexpr int objects_of_wire = 5, others = 20;
  std::string text = "sheet wide\n page 4000,4000\n";
  for (int i = 0; i < (objects - others) / objects_of_wire; ++i) {
    const int x = i % 100 * 20, y = i / 100 * 20;
    const auto point = [&](int at_x) { return std::to_string(at_x) + "," + std::to_string(y); };
    text.append(" net\n  wire ").append(point(x)).append(" ").append(point(x + 10)).append("\n");
  }
  return gx_encode_file(*build_design(text).back().file);
}
