// The rules of instances and their pins.
#include "app/check/sheet/sheet_check.h"
#include "gx/db/file/link_file.h"
#include "gx/text/strings.h"

namespace {

constexpr kv_once_t class_once = {kv_rule::class_twice, "CLASS",
                                  "more than 1 property \"CLASS\" on the body : "};
constexpr kv_once_t inst_once = {kv_rule::inst_twice, "INST",
                                 "more than 1 property \"INST\" on the body : "};
constexpr kv_once_t pin_once = {kv_rule::pin_twice, "PIN",
                                "more than 1 property \"PIN\" on the pin : "};
constexpr kv_once_t pintype_once = {kv_rule::pintype_twice, "PINTYPE",
                                    "more than 1 property \"PINTYPE\" on the pin : "};
constexpr kv_wording_t of_body = {kv_rule::body_properties, "Too many properties on the body : ",
                                  "properties with same name on the body :", "I_", true};
constexpr kv_wording_t of_pin = {kv_rule::pin_properties, "Too many properties on pins : ",
                                 "properties with same name on the pin :", "P_", true};

void report_too_many(kv_sheet_check_t& check, const gx_owner_t& where, std::string_view words) {
  check.add(kv_rule::too_many, where, {{kv_check_head::error, std::string(words)}});
}

// --- pins

// The rules of one pin; its name goes into the names of its instance.
void check_pin(kv_sheet_check_t& check, int inst, gx_pin_pair_t pair, kv_check_table_t& pin_names) {
  const gx_owner_t own = {gx_owner_kind::pin, pair.pinpropfam, inst, pair.pinpropfam};
  kv_object_check pin(check, of_pin, own);
  const gx_object_property_rec_t* name = nullptr;
  const gx_object_property_rec_t* type = nullptr;
  const auto check_property = [&](const gx_object_property_rec_t& property) {
    pin.is_first(pintype_once, property, type);
    if (pin.is_first(pin_once, property, name)) {
      if (!pin_names.add(gx_view(property.nvalue), own)) {
        report_too_many(check, own, "Too many pins : ");
      }
      if (property.fixed == 0) {
        pin.add(kv_rule::pin_loose, "property \"PIN\" NOFIXED on the pin : ").marks = {
            {kv_mark_t::object, property.gene.object_id}};
      }
    }
    pin.add_name(property);
  };
  gx_visit_properties(check.file, own, check_property);
  gx_visit_properties(check.file, {gx_owner_kind::symbol_pin, pair.pin, inst, pair.pinpropfam},
                      check_property);

  const std::vector<kv_mark_t> properties = {{kv_mark_t::properties, pair.pinpropfam},
                                             {kv_mark_t::properties, pair.pin}};
  if (type == nullptr) {
    pin.add(kv_rule::pintype_missing, "no property \"PINTYPE\" found on the pin : ").marks =
        properties;
  }
  if (name == nullptr) {
    pin.add(kv_rule::pin_unnamed, "no property \"PIN\" found on the pin : ").marks = properties;
  }
  pin.report_same_names();
}

// --- instances

// A port is named by the NET property of its first pin.
const gx_object_property_rec_t* port_name(const kv_sheet_check_t& check, int inst) {
  const auto pair = lb_inq_inst_first_pin_id(check.file, inst);
  if (!pair) return nullptr;
  for (const int holder : {pair.pinpropfam, pair.pin}) {
    if (const int id = gx_find_property_name(check.file, holder, "NET")) {
      return &gx_property_info_ptr(check.file, id);
    }
  }
  return nullptr;
}

void check_port(kv_sheet_check_t& check, const gx_owner_t& own) {
  const auto* name = port_name(check, own.inst);
  if (name == nullptr) {
    check
        .add(kv_rule::port_name, own,
             {{kv_check_head::error, "PORT without name ( --> property NET ) "}})
        .marks = {{kv_mark_t::object, own.inst}};
  } else if (!check.port_names.add(gx_view(name->nvalue), own)) {
    report_too_many(check, own, "Too many PORTS ");
  }
}

const gx_link_test_t& link_of(kv_links_t& links, std::string_view path) {
  const auto [found, is_new] = links.try_emplace(std::string(path));
  if (is_new) found->second = gx_check_gx_link(path);
  return found->second;
}

void check_symbol_reference(kv_sheet_check_t& check, const gx_owner_t& own) {
  const auto& file = check.file;
  const int symbol = gx_instance_info_ptr(file, own.inst).symbol;
  const auto path = gx_view(gx_symbol_info_ptr(file, symbol).path);
  const auto& link = link_of(check.links, path);
  if (link.link_found && link.current) {
    check.report.references.push_back({symbol, path});
    return;
  }
  const std::string quoted = "\"" + std::string(path) + "\" ";
  const std::string label = kv_label("S_", symbol);
  auto& finding =
      link.link_found
          ? check.add(kv_rule::symbol_old, own,
                      {{kv_check_head::error, "Out Of Date  reference for : " + label},
                       {kv_check_head::more, "Existing Symbol path  : "},
                       {kv_check_head::more, quoted}})
          : check.add(kv_rule::symbol_missing, own,
                      {{kv_check_head::error, "invalid Symbol reference for : " + label},
                       {kv_check_head::error, " Symbol path  : "},
                       {kv_check_head::more, quoted}});
  if (const int body = lb_inq_symbol_child_id(file, symbol).body; body != 0) {
    const int graphics = lb_inq_graphics_property_id(file, body).graphics;
    if (graphics != 0) finding.marks.push_back({kv_mark_t::object, graphics});
  }
  finding.marks.push_back({kv_mark_t::object, own.inst});
}

std::vector<kv_mark_t> body_marks(const kv_sheet_check_t& check, int inst) {
  const int body = lb_inq_inst_child_id(check.file, inst).bodpropfam;
  if (body <= 0) return {};
  return {{kv_mark_t::properties, body}};
}

// An instance without a name: allowed for ports and globals, doubtful with a CLASS.
void check_missing_inst(kv_sheet_check_t& check, kv_object_check& body, int inst,
                        const gx_object_property_rec_t* class_seen) {
  const auto class_value = class_seen == nullptr ? std::string_view{} : gx_view(class_seen->nvalue);
  if (gx_equal("G", class_value) || gx_equal("P", class_value)) return;
  const auto marks = body_marks(check, inst);
  if (class_seen == nullptr) {
    body.add(kv_rule::inst_missing, "no property \"INST\" found on the component : ").marks = marks;
    return;
  }
  auto& finding =
      body.add(kv_rule::inst_class_only, "no property \"INST\" found on the component : ");
  std::string words = "found property \"CLASS\" instead : \"";
  finding.lines.push_back({kv_check_head::more, words.append(class_value).append("\" ")});
  finding.marks = marks;
}

void check_instance(kv_sheet_check_t& check, int inst, kv_check_table_t& pin_names) {
  const auto& file = check.file;
  const gx_owner_t own = {gx_owner_kind::body, inst, inst, inst};
  kv_object_check body(check, of_body, own);
  const gx_object_property_rec_t* class_seen = nullptr;
  const gx_object_property_rec_t* inst_seen = nullptr;
  const int symbol = gx_instance_info_ptr(file, inst).symbol;
  const auto check_property = [&](const gx_object_property_rec_t& property, bool on_symbol) {
    if (body.is_first(class_once, property, class_seen) && gx_iden("P", gx_view(property.nvalue))) {
      check_port(check, own);
    }
    if (body.is_first(inst_once, property, inst_seen)) {
      if (!check.instance_names.add(gx_view(property.nvalue), own)) {
        report_too_many(check, own, "Too many INSTANCES ");
      }
      if (on_symbol) {
        check
            .add(kv_rule::inst_on_symbol, own,
                 {{kv_check_head::warning, "property \"INST\" found on symbol: "},
                  {kv_check_head::place,
                   kv_label("S_", symbol) + "of instance: " + kv_label("I_", inst)}})
            .marks = {{kv_mark_t::object, property.gene.object_id}};
      }
    }
    body.add_name(property);
  };
  gx_visit_properties(file, own, [&](const auto& property) { check_property(property, false); });
  gx_visit_properties(file, {gx_owner_kind::symbol, symbol, inst, inst},
                      [&](const auto& property) { check_property(property, true); });

  check_symbol_reference(check, own);

  pin_names.clear();
  for (const auto pair : lb_pins(file, inst)) check_pin(check, inst, pair, pin_names);
  if (const auto same = kv_same_names(pin_names); !same.empty()) {
    auto& finding = body.add(kv_rule::pin_same_name, "pin with same name on the Instance :");
    std::string words = "Pin with same name : \"";
    words.append(pin_names.names[same.front().first]).append("\" ");
    finding.lines.push_back({kv_check_head::item, std::move(words)});
    finding.marks = body_marks(check, inst);
  }
  body.report_same_names();
  if (inst_seen == nullptr) check_missing_inst(check, body, inst, class_seen);
}

}  // namespace

void kv_check_instances(kv_sheet_check_t& check) {
  kv_check_table_t pin_names{check.most_names};
  for (const int inst : lb_instances(check.file)) {
    if (!gx_inq_object_deleted(check.file, inst)) check_instance(check, inst, pin_names);
  }
}
