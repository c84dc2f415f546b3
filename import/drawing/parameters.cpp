// Identifiers in values.
#include "import/drawing/parameters.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <set>

#include "gx/text/at.h"
#include "gx/text/strings.h"
#include "import/drawing/numbers.h"

namespace {

bool is_of_name(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// The text with each identifier, not the digits and suffix of a number, as `replaced` gives it.
std::string with_identifiers(std::string_view text,
                             const std::function<std::string(std::string_view)>& replaced) {
  std::string all;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && is_of_name(text[end])) ++end;
    const bool number = text[at] >= '0' && text[at] <= '9';
    if (end == at)
      all += text[at++];
    else
      all += number ? std::string(text.substr(at, end - at)) : replaced(text.substr(at, end - at));
    at = std::max(at, end);
  }
  return all;
}

std::vector<std::string> identifiers(std::string_view text) {
  std::vector<std::string> names;
  with_identifiers(text, [&](std::string_view name) {
    names.push_back(gx_upper(name));
    return std::string();
  });
  return names;
}

const gxi_property_t* find(const std::vector<gxi_property_t>& properties, std::string_view name) {
  const auto found = std::find_if(properties.begin(), properties.end(), [&](const auto& property) {
    return gx_iden(property.name, name);
  });
  return found == properties.end() ? nullptr : &*found;
}

class chooser {
 public:
  chooser(const gxi_design_t& design, std::size_t most) : design_(design) {
    for (const auto& name : design.kept_of_instances)
      if (kept_.size() < most) kept_.push_back(name);
  }

  std::vector<std::string> run() {
    for (const auto& name : design_.parameters) chosen_.insert(gx_upper(name));
    if (chosen_.empty()) return {};
    for (std::size_t before = 0; before != chosen_.size();) {
      before = chosen_.size();
      each([&](const std::string& name, const std::string& value, const gxi_cell_t&) {
        const auto plain = gxi_plain_expression(value);
        if (!plain || gxi_plain_number(value)) return;
        for (const auto& part : identifiers(*plain))
          if (chosen_.contains(part)) chosen_.insert(gx_upper(name));
      });
    }
    std::erase_if(chosen_, [&](const auto& name) {
      return std::none_of(kept_.begin(), kept_.end(),
                          [&](const auto& kept) { return gx_iden(kept, name); });
    });
    for (std::size_t before = chosen_.size() + 1; before != chosen_.size();) {
      before = chosen_.size();
      each([&](const std::string& name, const std::string& value, const gxi_cell_t& in) {
        if (!value.empty() && !can_be_number(value, in)) chosen_.erase(gx_upper(name));
      });
    }
    std::vector<std::string> names;
    for (const auto& name : kept_)
      if (chosen_.contains(gx_upper(name))) names.push_back(name);
    return names;
  }

 private:
  // Each value of a part, its own or its symbol's, and the cell that it is in.
  void each(const std::function<void(const std::string&, const std::string&, const gxi_cell_t&)>&
                visit) const {
    for (const auto& cell : design_.cells) {
      if (!cell.sheet) continue;
      for (const auto& instance : cell.sheet->instances) {
        if (instance.kind != gxi_kind::part) continue;
        for (const auto& property : instance.properties) visit(property.name, property.value, cell);
        for (const auto& property : gx_at(design_.cells, instance.symbol).symbol.defaults)
          if (find(instance.properties, property.name) == nullptr)
            visit(property.name, property.value, cell);
      }
    }
  }

  bool can_be_number(const std::string& value, const gxi_cell_t& in) const {
    if (gxi_plain_number(value)) return true;
    const auto plain = gxi_plain_expression(value);
    if (!plain || plain->size() > gxi_longest_number) return false;
    const auto names = identifiers(*plain);
    return &in != &gx_at(design_.cells, design_.top)
               ? std::all_of(names.begin(), names.end(),
                             [&](const auto& name) {
                               return chosen_.contains(name) && find(in.symbol.defaults, name);
                             })
               : names.empty();
  }

  const gxi_design_t& design_;
  std::vector<std::string> kept_;
  std::set<std::string> chosen_;  // in capitals
};

}  // namespace

void gxi_take_top_defaults(gxi_design_t& design) {
  auto& top = gx_at(design.cells, design.top);
  const auto& defaults = top.symbol.defaults;
  if (defaults.empty() || !top.sheet) return;
  for (auto& instance : top.sheet->instances)
    for (auto& property : instance.properties) {
      if (!gxi_plain_expression(property.value) || gxi_plain_number(property.value)) continue;
      property.value = with_identifiers(property.value, [&](std::string_view name) {
        const auto* const given = find(defaults, name);
        return given != nullptr && gxi_plain_number(given->value) ? given->value
                                                                  : std::string(name);
      });
    }
}

std::vector<std::string> gxi_number_names(const gxi_design_t& design, std::size_t most) {
  return chooser(design, most).run();
}
