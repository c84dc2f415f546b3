// Sheets that can be read but make no sense: a run gets through them, and what it writes can be
// loaded.
//
// An input is a list of changes, each five bytes: an object of one of the two sheets, one of its
// numbers, the new value.
#include <cstdint>
#include <string>

#include "fuzz/session.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/record_tables.h"
#include "kvi/load.h"
#include "kvi/state.h"

namespace {

constexpr char design[] = R"(
symbol two
  pin 1 0,0 IN
  pin 2 0,4 OUT
  prop CLASS=R
symbol port
  pin P 0,0 IXO
  prop CLASS=PORTIN
symbol ground
  pin P 0,0 IXO
  prop CLASS=G
symbol cell
  pin D 0,0 IXO bits 0:3
  pin A 0,4 IN
symbol ram
  pin D 0,0 IXO bits 0:3
  prop CLASS=M
sheet cell
  page 60,60
  port D port 0,0 bits 0:3
  port A port 0,20
  part U ram 4,0 TIMIND=3
  part R two 9,20 W=(2*DRIVE)
  global VDD ground 30,30
  bus D 0:3
    wire D U.D
    bit 2 R.2
  net A
    wire A R.1
sheet top
  page 60,60
  part X cell 4,0 DRIVE=2
  part Y cell 16,20 DRIVE=3
  global GND ground 40,40
  bus BUS 0:7
    wire X.D Y.D
    bit 4 Y.D
  net CLK
    wire X.A Y.A 40,40
)";

std::vector<gxm_file_t>& files() {
  static std::vector<gxm_file_t> made = build_design(design);
  return made;
}

// The number of the field as the record holds it; kinds that are no number stay.
void put(void* record, const gx_field_t& field, std::int16_t value) {
  switch (field.kind) {
    case gx_kind::u8:
    case gx_kind::flag:
      return gx_put_number(record, field, static_cast<std::uint8_t>(value));
    case gx_kind::i16:
    case gx_kind::i16_le:
    case gx_kind::id:
      return gx_put_number(record, field, value);
    case gx_kind::i32:
      return gx_put_number(record, field, std::int32_t{value});
    default:
      return;
  }
}

struct sheet_t {
  gxm_file_t* file = nullptr;
  std::string bytes;  // as it was made
};

std::vector<sheet_t>& sheets() {
  static std::vector<sheet_t> both;
  return both;
}

void change(gx_file_gene_recf_t& file, int object, unsigned field, std::int16_t value) {
  auto* record = file.ptr_to_ar_objindex[static_cast<std::size_t>(object)];
  const auto general = gx_general_fields();
  if (field < general.size()) {
    // The type decides about the size of the record.
    if (general[field].name != "object_type") put(record, general[field], value);
    return;
  }
  const auto tail = gx_tail_fields(record->object_type);
  put(record, tail[(field - general.size()) % tail.size()], value);
}

void check_design_file() {
  if (lseek(kv_sext.designfile, 0, SEEK_END) <= 0) return;  // the run was refused
  fuzz_expect(kvi_state.design.load(kv_sext.designfile) == kvi_load_result::loaded);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_prepare(files());
  for (auto& file : files())
    if (file.base == "sheet") sheets().push_back({&file, gx_encode_file(*file.file)});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::string> changed;
  for (const auto& sheet : sheets()) {
    auto load = gx_decode_file(sheet.bytes, "sheet");
    const auto& file = load.file;
    for (std::size_t at = 0; at + 5 <= size; at += 5) {
      const auto* d = data + at;
      const bool is_first = (d[0] & 0x80U) != 0;
      if (is_first != changed.empty()) continue;
      const int object = static_cast<int>((d[0] & 0x7FU) << 8U | d[1]) % file->object_id_max;
      change(*file, object, d[2], static_cast<std::int16_t>(unsigned{d[3]} << 8U | d[4]));
    }
    changed.push_back(gx_encode_file(*file));
    if (gx_decode_file(changed.back(), "changed").file == nullptr) return 0;
  }
  for (std::size_t i = 0; i < changed.size(); ++i) {
    fuzz_directory().write(sheets()[i].file->directory + "/sheet.gx_1", changed[i]);
  }
  fuzz_start();
  fuzz_expect(ftruncate(kv_sext.designfile, 0) == 0);
  for (const auto* line :
       {"PRIMI CLASS", "PROP INS R W", "PROP PIN S PIN PINTYPE", "PROP NET S NET", "RUN"})
    fuzz_run(line);
  check_design_file();
  return 0;
}
