#include "gx/db/objects_of.h"

#include "gx/text/strings.h"

namespace {

// The first object of a type from `id` on along the siblings.
int of_type_from(const gx_file_gene_recf_t& file, int id, gx_type type) {
  const gx_object_gene_rec_t* object = nullptr;
  while ((object = gx_object(file, id)) != nullptr && object->object_type != type) {
    id = object->following;
  }
  return object != nullptr ? id : 0;
}

gx_members members(const gx_file_gene_recf_t& file, gx_type family, gx_type member) {
  const int holder = gx_first_child_of(file, file.primary_object, family);
  return {gx_first_child_of(file, holder, member), {&file, member}};
}

// The object after `id` below a net: out of a wrapper at its end.
int behind(const gx_file_gene_recf_t& file, int net, int id) {
  const auto* object = gx_object(file, id);
  if (object == nullptr) return 0;
  if (gx_object(file, object->following) == nullptr && object->father != net) {
    object = gx_object(file, object->father);
    if (object == nullptr) return 0;
  }
  return object->following;
}

int part_from(const gx_file_gene_recf_t& file, int net, int id, gx_net_part_t wanted) {
  while (const auto* object = gx_object(file, id)) {
    if (object->object_type == wanted.part) return id;
    const bool enter = object->object_type == wanted.wrapper && object->father == net;
    const bool has_child = gx_object(file, object->child1) != nullptr;
    id = enter && has_child ? object->child1 : behind(file, net, id);
  }
  return 0;
}

}  // namespace

int gx_first_child_of(const gx_file_gene_recf_t& file, int father, gx_type type) {
  const auto* object = gx_object(file, father);
  return object != nullptr ? of_type_from(file, object->child1, type) : 0;
}

int gx_last_child_of(const gx_file_gene_recf_t& file, int father, gx_type type) {
  int last = 0;
  for (const int id : gx_children(file, father)) {
    if (gx_object(file, id)->object_type == type) last = id;
  }
  return last;
}

// --- families

int gx_next_member_t::operator()(int id) const {
  const auto* object = gx_object(*file, id);
  return object != nullptr ? of_type_from(*file, object->following, member) : 0;
}

gx_members lb_instances(const gx_file_gene_recf_t& file) {
  return members(file, gx_type::instance_family, gx_type::instance);
}
gx_members lb_symbols(const gx_file_gene_recf_t& file) {
  return members(file, gx_type::symbol_family, gx_type::symbol);
}
gx_members lb_nets(const gx_file_gene_recf_t& file) {
  return members(file, gx_type::net_family, gx_type::net);
}
gx_members lb_frames(const gx_file_gene_recf_t& file) {
  return members(file, gx_type::frame_family, gx_type::frame);
}
gx_members wn_components(const gx_file_gene_recf_t& file) {
  return members(file, gx_type::component_family, gx_type::component);
}

// --- pins

gx_pin_pair_t gx_first_pin(const gx_file_gene_recf_t& file, int inst) {
  gx_pin_pair_t pair;
  const auto* record = gx_object_as<gx_object_instance_rec_t>(file, inst);
  if (record == nullptr) return pair;
  const int family = gx_first_child_of(file, inst, gx_type::pin_family);
  pair.pinpropfam =
      static_cast<gx_object_id_t>(gx_first_child_of(file, family, gx_type::pinpropfam));
  if (gx_object_as<gx_object_symbol_rec_t>(file, record->symbol) != nullptr) {
    const int symbol_family = gx_last_child_of(file, record->symbol, gx_type::pin_family);
    pair.pin = static_cast<gx_object_id_t>(gx_first_child_of(file, symbol_family, gx_type::pin));
  }
  return pair;
}

gx_pin_pair_t gx_next_pin(const gx_file_gene_recf_t& file, gx_pin_pair_t pair) {
  const auto* pin = gx_object(file, pair.pin);
  const auto* pinpropfam = gx_object(file, pair.pinpropfam);
  if (pin == nullptr || pinpropfam == nullptr) return {};
  const int next_pin = of_type_from(file, pin->following, gx_type::pin);
  const int next = of_type_from(file, pinpropfam->following, gx_type::pinpropfam);
  if (next_pin == 0 || next == 0) return {};
  return {static_cast<gx_object_id_t>(next_pin), static_cast<gx_object_id_t>(next)};
}

// --- parts of a net

int gx_first_net_part(const gx_file_gene_recf_t& file, int net, gx_net_part_t wanted) {
  const auto* object = gx_object_as<gx_object_net_rec_t>(file, net);
  return object != nullptr ? part_from(file, net, object->gene.child1, wanted) : 0;
}

int gx_next_net_part(const gx_file_gene_recf_t& file, int net, int id, gx_net_part_t wanted) {
  return part_from(file, net, behind(file, net, id), wanted);
}

// --- properties

gx_siblings lb_inst_properties(const gx_file_gene_recf_t& file, int inst) {
  return gx_children(file, gx_first_child_of(file, inst, gx_type::bodpropfam));
}

gx_siblings lb_symbol_properties(const gx_file_gene_recf_t& file, int symbol) {
  const int body = gx_last_child_of(file, symbol, gx_type::body);
  return gx_children(file, gx_first_child_of(file, body, gx_type::property_family));
}

gx_siblings lb_frame_properties(const gx_file_gene_recf_t& file, int frame) {
  return gx_children(file, gx_first_child_of(file, frame, gx_type::property_family));
}

namespace {
const gx_object_property_rec_t* find_among(const gx_file_gene_recf_t& file, gx_siblings among,
                                           std::string_view name) {
  for (const int id : among) {
    const auto* property = gx_object_as<gx_object_property_rec_t>(file, id);
    if (property == nullptr || gx_is_deleted(property->gene)) continue;
    const std::string_view own = gx_view(property->name);
    if (own.size() == name.size() && gx_iden(own, name)) return property;
  }
  return nullptr;
}
}  // namespace

const gx_object_property_rec_t* gx_find_prop(const gx_file_gene_recf_t& file, int holder,
                                             std::string_view name) {
  return find_among(file, gx_children(file, holder), name);
}

const gx_object_property_rec_t* gx_find_prop_of_two(const gx_file_gene_recf_t& file, int first,
                                                    int second, std::string_view name) {
  const auto* property = gx_find_prop(file, first, name);
  return property != nullptr ? property : gx_find_prop(file, second, name);
}

const gx_object_property_rec_t* gx_find_inst_prop(const gx_file_gene_recf_t& file, int inst,
                                                  std::string_view name) {
  const auto* record = gx_object_as<gx_object_instance_rec_t>(file, inst);
  if (record == nullptr) return nullptr;
  const auto* own = find_among(file, lb_inst_properties(file, inst), name);
  if (own != nullptr || gx_object_as<gx_object_symbol_rec_t>(file, record->symbol) == nullptr) {
    return own;
  }
  return find_among(file, lb_symbol_properties(file, record->symbol), name);
}

const gx_object_property_rec_t* gx_find_net_prop(const gx_file_gene_recf_t& file, int net,
                                                 std::string_view name) {
  for (const int id : gx_children(file, net)) {
    if (gx_object(file, id)->object_type != gx_type::property_family) continue;
    if (const auto* property = gx_find_prop(file, id, name)) return property;
  }
  return gx_find_prop(file, net, name);
}
