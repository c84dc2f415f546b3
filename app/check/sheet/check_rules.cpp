// The rules of nets and frames, the names over the sheet, and all rules in their order.
#include "app/check/sheet/check_rules.h"

#include "app/check/sheet/sheet_check.h"
#include "expand/sheet/sheet_parts.h"
#include "gx/text/strings.h"

namespace {

constexpr kv_once_t net_once = {kv_rule::net_twice, "NET",
                                "more than 1 property \"NET\" on the net : "};
constexpr kv_once_t frexp_once = {kv_rule::frexp_twice, "FREXP",
                                  "more than 1 property \"FREXP\" on the frame : "};
constexpr kv_wording_t of_net = {kv_rule::net_properties, "Too many properties on Net : ",
                                 "properties with same name on the net :", "N_", false};
constexpr kv_wording_t of_frame = {kv_rule::frame_properties, "Too many properties on Frame : ",
                                   "properties with same name on the frame :", "F_", true};

void check_net(kv_sheet_check_t& check, int net) {
  const gx_owner_t own = {gx_owner_kind::net, net, 0, net};
  kv_object_check object(check, of_net, own);
  const gx_object_property_rec_t* name = nullptr;
  gx_visit_properties(check.file, own, [&](const gx_object_property_rec_t& property) {
    if (object.is_first(net_once, property, name) &&
        !check.net_names.add(gx_view(property.nvalue), own)) {
      check.add(kv_rule::too_many, own, {{kv_check_head::error, "Too many nets : "}});
    }
    object.add_name(property);
  });
  if (auto* finding = object.report_same_names()) finding->marks = {{kv_mark_t::net, net}};
}

void check_frame(kv_sheet_check_t& check, int frame) {
  const gx_owner_t own = {gx_owner_kind::frame, frame, 0, frame};
  kv_object_check object(check, of_frame, own);
  const gx_object_property_rec_t* expression = nullptr;
  gx_visit_properties(check.file, own, [&](const gx_object_property_rec_t& property) {
    if (object.is_first(frexp_once, property, expression) &&
        !check.frame_names.add(gx_view(property.nvalue), own)) {
      check.add(kv_rule::too_many, own, {{kv_check_head::error, "Too many frames : "}});
    }
    object.add_name(property);
  });
  if (expression == nullptr) {
    auto& finding =
        object.add(kv_rule::frexp_missing, "no property \"FREXP\" found on the frame : ");
    const int family = lb_inq_graphics_property_id(check.file, frame).property_family;
    if (family != 0) finding.marks = {{kv_mark_t::properties, family}};
  }
  object.report_same_names();
}

kv_sheet_finding_t& add_name(kv_sheet_check_t& check, const kv_check_table_t& table,
                             const kv_same_name_t& same, kv_rule rule, kv_check_head head,
                             std::string_view words) {
  std::string text(words);
  text.append("\"").append(table.names[same.first]).append("\" ");
  // The later one is the one to look at.
  return check.add(rule, table.owners[same.second], {{head, std::move(text)}});
}

// The names of one kind that may occur once.
void check_names(kv_sheet_check_t& check, const kv_check_table_t& table, kv_rule rule,
                 std::string_view words) {
  bool is_further = false;
  for (const auto& same : kv_same_names(table)) {
    add_name(check, table, same, rule, kv_check_head::error, words).is_further = is_further;
    is_further = true;
  }
}

bool is_supply(std::string_view name) {
  constexpr std::string_view beginnings[] = {"GND", "AGND", "DGND", "VGND", "VDD",  "AVDD", "DVDD",
                                             "VCC", "AVCC", "VSS",  "AVSS", "VPWR", "VEE",  "VBAT"};
  const bool is_signed = name.size() > 1 && (name[0] == '+' || name[0] == '-');
  if (is_signed && name[1] >= '0' && name[1] <= '9') return true;
  return std::ranges::any_of(beginnings, [&](auto head) { return gx_equal(head, name); });
}

// Whether a port or a global of the sheet has the name.
bool is_name_of_sign(const gx_file_gene_recf_t& file, std::string_view name) {
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    const kv_inst_role role = kv_role_of(file, inst);
    if (role == kv_inst_role::part) continue;
    const auto pair = lb_inq_inst_first_pin_id(file, inst);
    const auto* property = role == kv_inst_role::global ? gx_find_inst_prop(file, inst, "GLOBAL")
                           : pair ? gx_find_prop_of_two(file, pair.pinpropfam, pair.pin, "NET")
                                  : nullptr;
    if (gx_iden(name, gx_prop_text(property))) return true;
  }
  return false;
}

// Whether each net of the name shows it.
bool is_shown_everywhere(const kv_sheet_check_t& check, std::string_view name) {
  const auto& [most, names, owners, overflowed] = check.net_names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!gx_iden(names[i], name)) continue;
    bool is_shown = false;
    gx_visit_properties(check.file, owners[i], [&](const gx_object_property_rec_t& property) {
      is_shown |= gx_iden("NET", gx_view(property.name)) && property.visible != 0;
    });
    if (!is_shown) return false;
  }
  return true;
}

// Nets may be joined by their names: one finding says that there are some, another that there are
// some which are meant so: supplies, names of ports and globals, and labels that the drawing
// repeats.
void check_joined_nets(kv_sheet_check_t& check) {
  const auto same = kv_same_names(check.net_names);
  std::vector<kv_same_name_t> doubtful, meant;
  for (const auto& each : same) {
    const auto name = check.net_names.names[each.first];
    const bool is_meant =
        is_supply(name) || is_shown_everywhere(check, name) || is_name_of_sign(check.file, name);
    (is_meant ? meant : doubtful).push_back(each);
  }
  for (const auto* names : {&doubtful, &meant}) {
    if (names->empty()) continue;
    auto& finding = add_name(check, check.net_names, names->front(),
                             names == &meant ? kv_rule::net_repeated : kv_rule::net_same_name,
                             kv_check_head::soft_warning, "NETS connected by their name  : ");
    finding.more = static_cast<int>(names->size()) - 1;
    finding.is_further = names->front().first != same.front().first;
  }
}

}  // namespace

std::string kv_label(std::string_view kind, int id) {
  return std::string(kind) + std::to_string(id) + " ";
}

void kv_check_nets(kv_sheet_check_t& check) {
  for (const int net : lb_nets(check.file)) {
    if (!gx_inq_object_deleted(check.file, net)) check_net(check, net);
  }
}

void kv_check_frames(kv_sheet_check_t& check) {
  for (const int frame : lb_frames(check.file)) {
    if (!gx_inq_object_deleted(check.file, frame)) check_frame(check, frame);
  }
}

kv_sheet_report_t kv_check_sheet(const gx_file_gene_recf_t& file, kv_links_t& links,
                                 std::size_t most_names) {
  kv_sheet_check_t check = {file, links, most_names};
  kv_check_instances(check);
  check_names(check, check.instance_names, kv_rule::inst_same_name, "INSTANCE with same name  : ");
  check_names(check, check.port_names, kv_rule::port_same_name, "PORT with same name  : ");
  kv_check_nets(check);
  kv_check_frames(check);
  check_joined_nets(check);
  check_names(check, check.frame_names, kv_rule::frame_same_name, "Frame with same name  : ");
  return std::move(check.report);
}
