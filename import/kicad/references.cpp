#include "import/kicad/references.h"

gxi_kicad_references_t::gxi_kicad_references_t(const gxi_kicad_file_t& top)
    : id_length_(top.id.size()) {
  for (const auto& use : top.all_uses) old_uses_.emplace(use.path, &use);
}

// Of the older kind, without the root's own id.
const gxi_kicad_use_t* gxi_kicad_references_t::old_use(const gxi_kicad_placed_t& placed,
                                                       const std::string& path) const {
  const auto found = old_uses_.find(path.substr(1 + id_length_) + "/" + placed.id);
  return found == old_uses_.end() ? nullptr : found->second;
}

std::string gxi_kicad_references_t::reference(const gxi_kicad_placed_t& placed,
                                              const std::string& path) const {
  for (const auto& use : placed.uses)
    if (use.path == path) return use.reference;
  if (const auto* const use = old_use(placed, path)) return use->reference;
  for (const auto& field : placed.fields)
    if (field.name == "Reference" && (placed.uses.empty() || !field.value.text.empty()))
      return field.value.text;
  return placed.uses.empty() ? std::string() : placed.uses.front().reference;
}

int gxi_kicad_references_t::unit(const gxi_kicad_placed_t& placed, const std::string& path) const {
  for (const auto& use : placed.uses)
    if (use.path == path && use.unit > 0) return use.unit;
  const auto* const use = placed.uses.empty() ? old_use(placed, path) : nullptr;
  return use != nullptr && use->unit > 0 ? use->unit : placed.unit;
}

std::string gxi_kicad_letters(int unit) {
  std::string letters;
  for (; unit > 0; unit = (unit - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (unit - 1) % 26));
  return letters;
}
