// Names and values of attributes.
#include "import/lepton/texts.h"

#include <algorithm>

std::string_view gxi_lepton_text_t::name() const {
  const auto equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return {};
  const std::string_view before = std::string_view(text).substr(0, equals);
  if (before.find('\n') != std::string_view::npos || before.back() == ' ') return {};
  if (equals + 1 < text.size() && text[equals + 1] == ' ') return {};
  return before;
}

std::string_view gxi_lepton_text_t::value() const {
  const auto before = name();
  return before.empty() ? std::string_view() : std::string_view(text).substr(before.size() + 1);
}

std::vector<std::string_view> gxi_lepton_values(const gxi_lepton_texts_t& texts,
                                                std::string_view name) {
  std::vector<std::string_view> values;
  for (const auto& text : texts)
    if (text.name() == name) values.push_back(text.value());
  return values;
}

std::string_view gxi_lepton_value(const gxi_lepton_texts_t& texts, std::string_view name) {
  const auto found = std::find_if(texts.begin(), texts.end(),
                                  [&](const auto& text) { return text.name() == name; });
  return found == texts.end() ? std::string_view() : found->value();
}
