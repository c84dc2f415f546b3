// The bare loop beside which a run is measured. It knows every record beforehand: no sheet is
// read, nothing is looked up, joined or decided.
#include "bench/floor.h"

#include <unistd.h>

#include <cstring>
#include <stdexcept>
#include <vector>

#include "expand/store.h"

namespace {

template <typename Record>
std::vector<Record> copy_of(kv_blocked_t<Record>& array) {
  std::vector<Record> records;
  records.reserve(static_cast<std::size_t>(array.count));
  for (std::int32_t i = 1; i <= array.count; ++i) records.push_back(array[i]);
  return records;
}

template <typename Record>
void build(kv_blocked_t<Record>& array, const std::vector<Record>& records) {
  for (const Record& record : records) array.add() = record;
}

}  // namespace

struct run_floor::source_t {
  std::vector<kv_string_record_t> strings;
  std::vector<char> chars;
  std::vector<kv_prop_record_t> props;
  std::vector<kv_inst_record_t> insts;
  std::vector<kv_pin_record_t> pins;
  std::vector<kv_net_record_t> nets;
  std::vector<kv_net_child_record_t> net_childs;
  std::vector<kv_macro_record_t> macros;
  std::vector<kv_pinm_record_t> pinms;
  std::vector<char> image;
};

run_floor::run_floor() : source_(std::make_unique<source_t>()) {
  source_->strings = copy_of(kv_sext.strings);
  source_->chars = copy_of(kv_sext.chars);
  source_->props = copy_of(kv_sext.props);
  source_->insts = copy_of(kv_sext.insts);
  source_->pins = copy_of(kv_sext.pins);
  source_->nets = copy_of(kv_sext.nets);
  source_->net_childs = copy_of(kv_sext.net_childs);
  source_->macros = copy_of(kv_sext.macros);
  source_->pinms = copy_of(kv_sext.pinms);
  const auto size = ::lseek(kv_sext.designfile, 0, SEEK_END);
  source_->image.resize(static_cast<std::size_t>(size));
  if (::pread(kv_sext.designfile, source_->image.data(), source_->image.size(), 0) != size) {
    throw std::runtime_error("cannot read the design file");
  }
}
run_floor::~run_floor() = default;

void run_floor::pass() {
  kv_empty_store();
  for (const kv_string_record_t& record : source_->strings) {
    kv_sext.strings.add() = record;
    if (record.len == 0) continue;
    char* place = kv_sext.chars.add_in_block(record.len);
    if (place == nullptr) {
      while (kv_sext.chars.count < record.index - 1) kv_sext.chars.add();
      kv_sext.chars.reach();
      place = kv_sext.chars.add_in_block(record.len);
    }
    std::memcpy(place, source_->chars.data() + record.index - 1,
                static_cast<std::size_t>(record.len));
  }
  build(kv_sext.props, source_->props);
  build(kv_sext.insts, source_->insts);
  build(kv_sext.pins, source_->pins);
  build(kv_sext.nets, source_->nets);
  build(kv_sext.net_childs, source_->net_childs);
  build(kv_sext.macros, source_->macros);
  build(kv_sext.pinms, source_->pinms);
  const auto size = static_cast<ssize_t>(source_->image.size());
  if (::pwrite(kv_sext.designfile, source_->image.data(), source_->image.size(), 0) != size) {
    throw std::runtime_error("cannot write the design file");
  }
}
