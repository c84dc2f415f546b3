// The rules of CHEck SHEet. A finding is a line or two in the list, and the object it is about is
// selected.
#include "app/check/check_rules.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <span>
#include <unordered_map>

#include "gx/db/files.h"
#include "gx/db/owners.h"
#include "gx/display/draw.h"
#include "gx/text/message_list.h"
#include "gx/text/strings.h"

namespace {

// --- names that stand twice, found by sorting

bool less_without_case(std::string_view a, std::string_view b) {
  return std::ranges::lexicographical_compare(
      a, b, [](char x, char y) { return gx_upper_case(x) < gx_upper_case(y); });
}

// The earliest name that stands there again later, letters in either case.
std::optional<std::string_view> first_duplicate(std::span<const std::string_view> names) {
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [&](std::size_t a, std::size_t b) { return less_without_case(names[a], names[b]); });
  // Equal names stand together, each group in the order of the table.
  auto first = names.size();
  for (std::size_t i = 1; i < order.size(); ++i) {
    if (gx_iden(names[order[i - 1]], names[order[i]])) first = std::min(first, order[i - 1]);
  }
  if (first == names.size()) return std::nullopt;
  return names[first];
}

// --- lines

std::string label(std::string_view kind, int id, std::string_view behind = " ") {
  return std::string(kind) + std::to_string(id) + std::string(behind);
}

// "## !! : I_12 ", the second line of a finding.
void show_place(const std::string& where) { gx_tell("## !! : ", where); }

void select(const kv_check_t& check, const gx_object_property_rec_t& property) {
  gx_set_object_selected(check.file, property.gene.object_id, true);
}

// --- the properties of one object, and what the rules ask of them

// A property that may stand once on an object. `extra` is the error of a second one.
struct once_t {
  std::string_view name, extra;
};
constexpr once_t class_once = {"CLASS",
                               "# !! Error : more than 1 property \"CLASS\" on the body : "};
constexpr once_t inst_once = {"INST", "# !! Error : more than 1 property \"INST\" on the body : "};
constexpr once_t pin_once = {"PIN", "# !! Error : more than 1 property \"PIN\" on the pin : "};
constexpr once_t pintype_once = {"PINTYPE",
                                 "# !! Error : more than 1 property \"PINTYPE\" on the pin : "};
constexpr once_t net_once = {"NET", "# !! Error : more than 1 property \"NET\" on the net : "};
constexpr once_t frexp_once = {"FREXP",
                               "# !! Error : more than 1 property \"FREXP\" on the frame : "};

// How the findings of one kind of object are worded.
struct wording_t {
  std::string_view too_many, same_name;
  bool place_on_own_line;
};
constexpr wording_t of_body = {"# !! Error : Too many properties on the body : ",
                               "# !! Error : properties with same name on the body :", true};
constexpr wording_t of_pin = {"# !! Error : Too many properties on pins : ",
                              "# !! Error : properties with same name on the pin :", true};
constexpr wording_t of_net = {"# !! Error : Too many properties on Net : ",
                              "# !! Error : properties with same name on the net :", false};
constexpr wording_t of_frame = {"# !! Error : Too many properties on Frame : ",
                                "# !! Error : properties with same name on the frame :", true};

void report(kv_check_t& check, const wording_t& wording, std::string_view error,
            const std::string& where) {
  if (!wording.place_on_own_line) return check.error(error, where);
  check.error(error);
  show_place(where);
}

// The property names met on one object.
struct object_check_t {
  kv_check_t& check;
  const wording_t& wording;
  std::string where;  // "I_12 "
  kv_check_table_t names;

  void add_name(const gx_object_property_rec_t& property) {
    if (!names.add(gx_view(property.name))) check.error(wording.too_many);
  }

  // Whether the property is the one that may stand once, and the first of it. `seen` keeps it.
  bool is_first(const once_t& once, const gx_object_property_rec_t& property,
                const gx_object_property_rec_t*& seen) {
    if (!gx_iden(once.name, gx_view(property.name))) return false;
    if (seen == nullptr) {
      seen = &property;
      return true;
    }
    report(check, wording, once.extra, where);
    select(check, property);
    return false;
  }

  // True after a finding.
  bool report_same_names() {
    const auto twice = first_duplicate(names.names);
    if (!twice) return false;
    report(check, wording, wording.same_name, where);
    gx_tell_as(gx_line_kind::detail, "#    properties with same name : \"", *twice, "\" ");
    return true;
  }
};

// --- pins

void select_pin_properties(const kv_check_t& check, gx_pin_pair_t pair) {
  gx_set_child_selected(check.file, pair.pinpropfam, true);
  gx_set_child_selected(check.file, pair.pin, true);
}

// The rules of one pin; its name goes into the names of its instance.
void check_pin(kv_check_t& check, int inst, gx_pin_pair_t pair, kv_check_table_t& pin_names) {
  object_check_t pin = {check, of_pin, label("P_", pair.pinpropfam), {}};
  const gx_object_property_rec_t* name = nullptr;
  const gx_object_property_rec_t* type = nullptr;
  const auto check_property = [&](const gx_object_property_rec_t& property) {
    pin.is_first(pintype_once, property, type);
    if (pin.is_first(pin_once, property, name)) {
      if (!pin_names.add(gx_view(property.nvalue))) check.error("# !! Error : Too many pins : ");
      if (property.fixed == 0) {
        check.error("# !! Error : property \"PIN\" NOFIXED on the pin : ");
        show_place(pin.where);
        select(check, property);
      }
    }
    pin.add_name(property);
  };
  gx_visit_properties(check.file, {gx_owner_kind::pin, pair.pinpropfam, inst, pair.pinpropfam},
                      check_property);
  gx_visit_properties(check.file, {gx_owner_kind::symbol_pin, pair.pin, inst, pair.pinpropfam},
                      check_property);

  if (type == nullptr) {
    check.warning("# !! Warning : no property \"PINTYPE\" found on the pin : ");
    show_place(pin.where);
  }
  if (name == nullptr) {
    check.error("# !! Error : no property \"PIN\" found on the pin : ");
    show_place(pin.where);
  }
  if (type == nullptr || name == nullptr) select_pin_properties(check, pair);
  pin.report_same_names();
}

// --- instances

// A port is named by the NET property of its first pin.
const gx_object_property_rec_t* port_name(const kv_check_t& check, int inst) {
  const auto pair = lb_inq_inst_first_pin_id(check.file, inst);
  if (!pair) return nullptr;
  for (const int holder : {pair.pinpropfam, pair.pin}) {
    if (const int id = gx_find_property_name(check.file, holder, "NET")) {
      return &gx_property_info_ptr(check.file, id);
    }
  }
  return nullptr;
}

void check_port(kv_check_t& check, int inst) {
  const auto* name = port_name(check, inst);
  if (name == nullptr) {
    check.error("# !! Error : PORT without name ( --> property NET ) ");
    gx_set_object_selected(check.file, inst, true);
  } else if (!check.port_names.add(gx_view(name->nvalue))) {
    check.error("# !! Error : Too many PORTS ");
  }
}

// The reference from each symbol of the sheet to its file, looked up once.
class links_t {
 public:
  const gx_link_test_t& of(int symbol, std::string_view path) {
    const auto [found, is_new] = links_.try_emplace(symbol);
    if (is_new) found->second = gx_check_gx_link(path);
    return found->second;
  }

 private:
  std::unordered_map<int, gx_link_test_t> links_;
};

void check_symbol_reference(kv_check_t& check, int inst, links_t& links) {
  const int symbol = gx_instance_info_ptr(check.file, inst).symbol;
  const auto path = gx_view(gx_symbol_info_ptr(check.file, symbol).path);
  const auto& link = links.of(symbol, path);
  if (link.link_found && link.current) return check.reference.add_symbol(symbol, path);
  if (link.link_found) {
    check.error("# !! Error : Out Of Date  reference for : ", label("S_", symbol));
    gx_tell("# !! Existing Symbol path  : ");
  } else {
    check.error("# !! Error : invalid Symbol reference for : ", label("S_", symbol));
    gx_tell("# !! Error :  Symbol path  : ");
  }
  gx_tell("# !! \"", path, "\" ");
  if (const int body = lb_inq_symbol_child_id(check.file, symbol).body; body != 0) {
    const int graphics = lb_inq_graphics_property_id(check.file, body).graphics;
    if (graphics != 0) gx_set_object_selected(check.file, graphics, true);
  }
  gx_set_object_selected(check.file, inst, true);
}

void select_body_properties(const kv_check_t& check, int inst) {
  const int body = lb_inq_inst_child_id(check.file, inst).bodpropfam;
  if (body > 0) gx_set_child_selected(check.file, body, true);
}

// An instance without a name: allowed for ports and globals, doubtful with a CLASS.
void check_missing_inst(kv_check_t& check, int inst, const gx_object_property_rec_t* class_seen) {
  const auto class_value = class_seen == nullptr ? std::string_view{} : gx_view(class_seen->nvalue);
  if (gx_equal("G", class_value) || gx_equal("P", class_value)) return;
  if (class_seen != nullptr) {
    check.warning("# !! Warning : no property \"INST\" found on the component : ");
    show_place(label("I_", inst));
    gx_tell("# !! found property \"CLASS\" instead : \"", class_value, "\" ");
  } else {
    check.error("# !! Error : no property \"INST\" found on the component : ");
    show_place(label("I_", inst));
  }
  select_body_properties(check, inst);
}

void check_instance(kv_check_t& check, int inst, links_t& links, kv_check_table_t& pin_names) {
  const auto& file = check.file;
  object_check_t body = {check, of_body, label("I_", inst), {}};
  const gx_object_property_rec_t* class_seen = nullptr;
  const gx_object_property_rec_t* inst_seen = nullptr;
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  const auto check_property = [&](const gx_object_property_rec_t& property, bool on_symbol) {
    if (body.is_first(class_once, property, class_seen) && gx_iden("P", gx_view(property.nvalue))) {
      check_port(check, inst);
    }
    if (body.is_first(inst_once, property, inst_seen)) {
      if (!check.instance_names.add(gx_view(property.nvalue))) {
        check.error("# !! Error : Too many INSTANCES ");
      }
      if (on_symbol) {
        check.warning("# !! Warning : property \"INST\" found on symbol: ");
        show_place(label("S_", symbol) + "of instance: " + label("I_", inst));
        select(check, property);
      }
    }
    body.add_name(property);
  };
  gx_visit_properties(file, {gx_owner_kind::body, inst, inst, inst},
                      [&](const auto& property) { check_property(property, false); });
  gx_visit_properties(file, {gx_owner_kind::symbol, symbol, inst, inst},
                      [&](const auto& property) { check_property(property, true); });

  check_symbol_reference(check, inst, links);

  pin_names.clear();
  for (const auto pair : lb_pins(file, inst)) check_pin(check, inst, pair, pin_names);
  if (const auto twice = first_duplicate(pin_names.names)) {
    check.error("# !! Error : pin with same name on the Instance :");
    show_place(body.where);
    gx_tell_as(gx_line_kind::detail, "#    Pin with same name : \"", *twice, "\" ");
    select_body_properties(check, inst);
  }
  body.report_same_names();
  if (inst_seen == nullptr) check_missing_inst(check, inst, class_seen);
}

void check_net(kv_check_t& check, int net) {
  object_check_t object = {check, of_net, label("N_", net), {}};
  const gx_object_property_rec_t* name = nullptr;
  gx_visit_properties(check.file, {gx_owner_kind::net, net, 0, net},
                      [&](const gx_object_property_rec_t& property) {
                        if (object.is_first(net_once, property, name) &&
                            !check.net_names.add(gx_view(property.nvalue))) {
                          check.error("# !! Error : Too many nets : ");
                        }
                        object.add_name(property);
                      });
  if (object.report_same_names()) lb_select_net(check.file_index, net);
}

void check_frame(kv_check_t& check, int frame) {
  object_check_t object = {check, of_frame, label("F_", frame), {}};
  const gx_object_property_rec_t* expression = nullptr;
  gx_visit_properties(check.file, {gx_owner_kind::frame, frame, 0, frame},
                      [&](const gx_object_property_rec_t& property) {
                        if (object.is_first(frexp_once, property, expression) &&
                            !check.frame_names.add(gx_view(property.nvalue))) {
                          check.error("# !! Error : Too many frames : ");
                        }
                        object.add_name(property);
                      });
  if (expression == nullptr) {
    check.warning("# !! Warning : no property \"FREXP\" found on the frame : ");
    show_place(object.where);
    const int family = lb_inq_graphics_property_id(check.file, frame).property_family;
    if (family != 0) gx_set_child_selected(check.file, family, true);
  }
  object.report_same_names();
}

}  // namespace

void kv_check_instances(kv_check_t& check) {
  links_t links;
  kv_check_table_t pin_names;
  for (const int inst : lb_instances(check.file)) {
    if (!gx_inq_object_deleted(check.file, inst)) check_instance(check, inst, links, pin_names);
  }
}

void kv_check_nets(kv_check_t& check) {
  for (const int net : lb_nets(check.file)) {
    if (!gx_inq_object_deleted(check.file, net)) check_net(check, net);
  }
}

void kv_check_frames(kv_check_t& check) {
  for (const int frame : lb_frames(check.file)) {
    if (!gx_inq_object_deleted(check.file, frame)) check_frame(check, frame);
  }
}

void kv_check_instance_names(kv_check_t& check) {
  if (const auto twice = first_duplicate(check.instance_names.names)) {
    check.error("# !! Error : INSTANCE with same name  : \"", *twice, "\" ");
  }
  if (const auto twice = first_duplicate(check.port_names.names)) {
    check.error("# !! Error : PORT with same name  : \"", *twice, "\" ");
  }
}

void kv_check_net_names(kv_check_t& check) {
  if (const auto twice = first_duplicate(check.net_names.names)) {
    check.warning("# !! warning : NETS connected by their name  : \"", *twice, "\" ");
  }
  if (const auto twice = first_duplicate(check.frame_names.names)) {
    check.error("# !! Error : Frame with same name  : \"", *twice, "\" ");
  }
}
