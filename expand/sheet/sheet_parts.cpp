// Instances, their pins and what a run keeps of them, read symbol by symbol.
#include "expand/sheet/sheet_parts.h"

#include <algorithm>
#include <array>

#include "expand/sheet/sheet_texts.h"
#include "gx/db/file/link_file.h"
#include "gx/db/objects_of.h"
#include "gx/db/queries.h"
#include "gx/text/at.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::int16_t max_timing_index = 120;

class parts_reader {
 public:
  parts_reader(const gx_file_gene_recf_t& file, const kv_setup_t& setup, const kv_net_table& nets,
               kv_sheet_t& sheet)
      : file_(file), setup_(setup), nets_(nets), sheet_(sheet) {}

  // Symbol by symbol: first along the symbol's own chain, then those that it misses.
  void take_symbols(std::span<const int> insts) {
    waiting_.resize(static_cast<std::size_t>(file_.object_id_max) + 1);
    chained_.resize(waiting_.size());
    std::vector<std::vector<int>> left(waiting_.size());
    for (const int inst : insts) {
      gx_at(waiting_, inst) = true;
      const int symbol = gx_object_as<gx_object_instance_rec_t>(file_, inst)->symbol;
      const bool is_symbol = gx_object_as<gx_object_symbol_rec_t>(file_, symbol) != nullptr;
      left[is_symbol ? static_cast<std::size_t>(symbol) : 0].push_back(inst);
    }
    for (const int id : lb_symbols(file_)) {
      take_symbol(id, gx_at(left, id));
      gx_at(left, id).clear();
    }
    // A symbol outside the family, and instances without one (kept at 0).
    for (std::size_t id = 0; id < left.size(); ++id) {
      take_symbol(static_cast<int>(id), left[id]);
    }
  }

 private:
  std::int32_t group_at(int pinpropfam) const {
    const std::int32_t net = nets_.net_at(pinpropfam);
    return net >= 0 ? gx_at(sheet_.nets, net).group : -1;
  }

  void take_symbol(int id, const std::vector<int>& left) {
    if (left.empty()) return;
    kv_sheet_symbol_t symbol;
    const auto* record = gx_object_as<gx_object_symbol_rec_t>(file_, id);
    if (record != nullptr) {
      const std::string_view path = gx_view(record->path);
      const gx_symbol_path_t parts = gx_get_path_n0version(path);
      symbol.path = kv_keep_text(sheet_, {path});
      symbol.directory =
          kv_keep_text(sheet_, {path.substr(0, std::min(path.rfind('/'), path.size()))});
      symbol.version_valid = !parts.error;
      symbol.version = parts.version;
    }
    const auto symbol_ind = static_cast<std::int32_t>(sheet_.symbols.size());
    symbol.first_inst = static_cast<std::int32_t>(sheet_.insts.size());
    const auto take = [&](int inst) {
      if (!gx_at(waiting_, inst)) return;
      gx_at(waiting_, inst) = false;
      take_inst(inst, symbol_ind);
    };
    // The chain may loop in a damaged sheet: no instance is passed twice.
    for (int inst = record != nullptr ? record->instance : 0;;) {
      const auto* chained = gx_object_as<gx_object_instance_rec_t>(file_, inst);
      if (chained == nullptr || chained->symbol != id) break;
      if (gx_at(chained_, inst)) break;
      gx_at(chained_, inst) = true;
      take(inst);
      inst = chained->following_inst;
    }
    for (const int inst : left) take(inst);
    symbol.nb_of_inst = static_cast<std::int32_t>(sheet_.insts.size()) - symbol.first_inst;
    sheet_.symbols.push_back(symbol);
  }

  void take_inst(int id, std::int32_t symbol) {
    kv_sheet_inst_t inst;
    inst.object_id = static_cast<gx_object_id_t>(id);
    inst.is_primitive = kv_found_primitive(setup_, file_, id);
    inst.symbol = symbol;
    inst.suffix =
        kv_keep_suffix(sheet_, gx_prop_text(gx_find_inst_prop(file_, id, "INST")), "I_", id);
    take_timing(inst);
    inst.kept = kv_keep_properties(
        sheet_, setup_, setup_.property_instance,
        [&](std::string_view name) { return gx_prop_text(gx_find_inst_prop(file_, id, name)); });
    inst.first_pin = static_cast<std::int32_t>(sheet_.pins.size());
    for (const gx_pin_pair_t pin : lb_pins(file_, id)) take_pin(pin);
    inst.nb_of_pin = static_cast<std::int32_t>(sheet_.pins.size()) - inst.first_pin;
    sheet_.insts.push_back(inst);
  }

  void take_timing(kv_sheet_inst_t& inst) {
    const auto* property = gx_find_inst_prop(file_, inst.object_id, "TIMIND");
    if (property == nullptr) return;
    const std::string_view text = gx_view(property->nvalue);
    const auto number = gx_string_to_int32(text);
    inst.timing_text = kv_keep_text(sheet_, {text});
    inst.timing_index = 0;
    const bool is_integer = text.find_first_not_of("0123456789 ") == std::string_view::npos;
    if (!is_integer) {
      inst.timing_state = kv_sheet_inst_t::timing_no_number;
    } else if (number.error || number.value > max_timing_index) {
      inst.timing_state = kv_sheet_inst_t::timing_too_big;
    } else {
      inst.timing_index = static_cast<std::int8_t>(number.value);
    }
  }

  void take_pin(gx_pin_pair_t ids) {
    const auto& record = *gx_object_as<gx_object_pinpropfam_rec_t>(file_, ids.pinpropfam);
    kv_sheet_pin_t pin;
    pin.object_id = static_cast<gx_object_id_t>(ids.pinpropfam);
    pin.suffix = kv_keep_text(sheet_, {"/", lb_pin_name(file_, ids)});
    take_pin_type(pin, gx_find_prop_of_two(file_, ids.pin, ids.pinpropfam, "PINTYPE"));
    pin.pin_start = record.pin_start;
    pin.pin_end = record.pin_end;
    pin.pin_net_start = record.pin_net_start;
    pin.group = group_at(ids.pinpropfam);
    pin.width =
        std::max(record.pin_end, record.pin_start) - std::min(record.pin_end, record.pin_start) + 1;
    if (pin.group >= 0) take_range(pin, gx_at(sheet_.groups, pin.group));
    pin.kept = kv_keep_properties(sheet_, setup_, setup_.property_pin, [&](std::string_view name) {
      return gx_prop_text(gx_find_prop_of_two(file_, ids.pinpropfam, ids.pin, name));
    });
    sheet_.pins.push_back(pin);
  }

  static void take_range(kv_sheet_pin_t& pin, const kv_sheet_group_t& group) {
    if (group.width <= 0) return;
    pin.position = kv_position_on(group, pin.pin_net_start);
    if (pin.position >= 0 && pin.position + pin.width <= group.width) return;
    pin.range_error = true;
    pin.width = pin.position < 0 ? 0 : std::min(pin.width, group.width - pin.position);
  }

  static void take_pin_type(kv_sheet_pin_t& pin, const gx_object_property_rec_t* property) {
    struct type_word {
      std::string_view head;
      kv_io_type type;
    };
    constexpr std::array<type_word, 4> words{
        {{"IN", kv_io_in}, {"OUT", kv_io_out}, {"IXO", kv_io_ixo}, {"IO", kv_io_io}}};
    pin.io_type = kv_io_out;
    if (property == nullptr) {
      pin.type_state = kv_sheet_pin_t::type_missing;
      return;
    }
    const auto word = std::find_if(words.begin(), words.end(), [&](const type_word& w) {
      return gx_equal(w.head, gx_view(property->nvalue));
    });
    if (word == words.end()) {
      pin.type_state = kv_sheet_pin_t::type_invalid;
    } else {
      pin.io_type = word->type;
    }
  }

  const gx_file_gene_recf_t& file_;
  const kv_setup_t& setup_;
  const kv_net_table& nets_;
  kv_sheet_t& sheet_;
  std::vector<bool> waiting_, chained_;  // by object id: to be taken, passed in its chain
};

}  // namespace

void kv_take_parts(const gx_file_gene_recf_t& file, const kv_setup_t& setup,
                   const kv_net_table& nets, std::span<const int> insts, kv_sheet_t& sheet) {
  parts_reader(file, setup, nets, sheet).take_symbols(insts);
}

kv_inst_role kv_role_of(const gx_file_gene_recf_t& file, int inst) {
  const std::string_view value = gx_prop_text(gx_find_inst_prop(file, inst, "CLASS"));
  if ((value.size() == 6 || value.size() == 7) && gx_equal("PORT", value))
    return kv_inst_role::port;
  const bool is_global = gx_iden(value, "G") && gx_find_inst_prop(file, inst, "GLOBAL") != nullptr;
  return is_global ? kv_inst_role::global : kv_inst_role::part;
}

bool kv_found_primitive(const kv_setup_t& setup, const gx_file_gene_recf_t& file, int inst) {
  return std::any_of(setup.primitive.begin(), setup.primitive.end(), [&](const auto& entry) {
    const auto* property = gx_find_inst_prop(file, inst, gx_view(entry.name));
    return property != nullptr &&
           (entry.nvalue.len == 0 || gx_iden(gx_view(property->nvalue), gx_view(entry.nvalue)));
  });
}
