#include "gxmake/object_labels.h"

#include <algorithm>
#include <filesystem>

#include "gx/db/objects_of.h"

namespace {

std::string place_text(const gx_object_gene_rec_t& object) {
  return std::to_string(object.origin.x) + "," + std::to_string(object.origin.y);
}

// The characters of a word without quotes.
std::string plain(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == ' ' || c == '"' || c == '\''; }, '_');
  return text;
}

std::string symbol_name(const gx_file_gene_recf_t& file, int symbol) {
  const auto* record = gx_object_as<gx_object_symbol_rec_t>(file, symbol);
  if (record == nullptr) return "symbol";
  const std::filesystem::path path = gx_view(record->path);
  return path.parent_path().filename().string();
}

}  // namespace

const std::string& gxm_labels::of(int id) {
  if (const auto made = labels_.find(id); made != labels_.end()) return made->second;
  const std::string wanted = plain(known_by(id));
  std::string label = wanted;
  for (int i = 2; !taken_.insert(label).second; ++i) label = wanted + "~" + std::to_string(i);
  return labels_[id] = label;
}

std::string gxm_labels::known_by(int id) {
  const auto* object = gx_object(file_, id);
  switch (object->object_type) {
    case gx_type::instance:
      return instance(id);
    case gx_type::symbol:
      return symbol_name(file_, id);
    case gx_type::pinpropfam:
      return pin(id);
    case gx_type::net:
      return net(id);
    case gx_type::vertex_2d:
      return place_text(*object);
    default:
      return std::string(gx_type_name(object->object_type));
  }
}

// By its INST, a port or a global by what its symbol is called and its place.
std::string gxm_labels::instance(int id) {
  const auto inst = gx_prop_text(gx_find_inst_prop(file_, id, "INST"));
  if (!inst.empty()) return std::string(inst);
  const auto* record = gx_object_as<gx_object_instance_rec_t>(file_, id);
  return symbol_name(file_, record->symbol) + "@" + place_text(record->gene);
}

// By its instance and the PIN of the symbol's pin.
std::string gxm_labels::pin(int id) {
  const auto* family = gx_object(file_, gx_object(file_, id)->father);
  const int inst = family != nullptr ? family->father : 0;
  if (gx_object_as<gx_object_instance_rec_t>(file_, inst) == nullptr) return "pinpropfam";
  std::string_view name;
  for (const auto pair : lb_pins(file_, inst))
    if (pair.pinpropfam == id) name = gx_prop_text(gx_find_prop(file_, pair.pin, "PIN"));
  return of(inst) + "." + std::string(name);
}

// By its NET, else by where its first segment begins.
std::string gxm_labels::net(int id) {
  const auto name = gx_prop_text(gx_find_net_prop(file_, id, "NET"));
  if (!name.empty()) return "net_" + std::string(name);
  const auto* first = gx_object_as<gx_object_segment_rec_t>(file_, lb_segments(file_, id).first());
  return first != nullptr && first->vertex1 != 0 ? "net_" + of(first->vertex1) : "net";
}
