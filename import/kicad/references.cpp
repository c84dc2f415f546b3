#include "import/kicad/references.h"

#include "gx/text/at.h"

namespace {

constexpr std::size_t most_visits = 200'000;

class reference_writer {
 public:
  reference_writer(const std::vector<gxi_kicad_cell_use_t>& cells,
                   const gxi_kicad_references_t& references)
      : cells_(cells), references_(references) {}

  void visit(int index, const std::string& path, const std::string& names) {
    is_whole_ = nb_of_visits_ < most_visits;
    if (!is_whole_) return;
    ++nb_of_visits_;
    for (const auto& part : gx_at(cells_, index).parts) {
      const auto reference = references_.reference(*part.placed, path);
      if (reference != part.name) lines_ += names + "/" + part.name + " " + reference + "\n";
    }
    for (const auto& below : gx_at(cells_, index).blocks)
      visit(below.cell, path + "/" + below.block->id, names + "/" + below.name);
  }
  bool is_whole() const { return is_whole_; }
  std::string take() { return std::move(lines_); }

 private:
  const std::vector<gxi_kicad_cell_use_t>& cells_;
  const gxi_kicad_references_t& references_;
  std::string lines_;
  std::size_t nb_of_visits_ = 0;
  bool is_whole_ = true;
};

}  // namespace

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

std::string gxi_kicad_reference_lines(const std::vector<gxi_kicad_cell_use_t>& cells,
                                      const gxi_kicad_references_t& references,
                                      const std::string& path, std::vector<std::string>& warnings) {
  reference_writer writer(cells, references);
  writer.visit(0, path, "");
  if (!writer.is_whole())
    warnings.push_back("more than " + std::to_string(most_visits) +
                       " sheets in use: the references of further ones are left out");
  return writer.take();
}

std::string gxi_kicad_letters(int unit) {
  std::string letters;
  for (; unit > 0; unit = (unit - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (unit - 1) % 26));
  return letters;
}
