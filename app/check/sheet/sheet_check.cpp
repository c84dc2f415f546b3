#include "app/check/sheet/sheet_check.h"

#include <algorithm>
#include <numeric>

#include "gx/text/strings.h"

namespace {

bool less_without_case(std::string_view a, std::string_view b) {
  return std::ranges::lexicographical_compare(
      a, b, [](char x, char y) { return gx_upper_case(x) < gx_upper_case(y); });
}

}  // namespace

std::string kv_words_of(const kv_sheet_finding_t& finding) {
  std::string words;
  for (const auto& line : finding.lines) {
    std::string_view part = line.words;
    part.remove_prefix(std::min(part.find_first_not_of(' '), part.size()));
    if (!words.empty()) words += ' ';
    words += part;
    while (words.ends_with(' ')) words.pop_back();
  }
  return words;
}

std::vector<kv_same_name_t> kv_same_names(const kv_check_table_t& table) {
  const auto& names = table.names;
  std::vector<std::size_t> order(names.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(
      order, [&](std::size_t a, std::size_t b) { return less_without_case(names[a], names[b]); });
  // Equal names are together, each group in the order of the table.
  std::vector<kv_same_name_t> same;
  const auto is_same = [&](std::size_t i) {
    return i > 0 && gx_iden(names[order[i - 1]], names[order[i]]);
  };
  for (std::size_t i = 1; i < order.size(); ++i) {
    if (is_same(i) && !is_same(i - 1)) same.push_back({order[i - 1], order[i]});
  }
  std::ranges::sort(same, {}, &kv_same_name_t::first);
  return same;
}

kv_sheet_finding_t& kv_object_check::add(kv_rule rule, std::string_view words) {
  using enum kv_check_head;
  const bool is_error = kv_row_of(rule).severity == kv_severity::error;
  kv_check_line_t line{is_error ? error : warning, std::string(words)};
  std::string label = kv_label(wording_.label, where_.id);
  if (wording_.place_on_own_line)
    return check_.add(rule, where_, {std::move(line), {place, std::move(label)}});
  line.words += label;
  return check_.add(rule, where_, {std::move(line)});
}

void kv_object_check::add_name(const gx_object_property_rec_t& property) {
  if (names_.add(gx_view(property.name), where_)) return;
  check_.add(kv_rule::too_many, where_, {{kv_check_head::error, std::string(wording_.too_many)}});
}

bool kv_object_check::is_first(const kv_once_t& once, const gx_object_property_rec_t& property,
                               const gx_object_property_rec_t*& seen) {
  if (!gx_iden(once.name, gx_view(property.name))) return false;
  if (seen == nullptr) {
    seen = &property;
    return true;
  }
  add(once.rule, once.extra).marks = {{kv_mark_t::object, property.gene.object_id}};
  return false;
}

kv_sheet_finding_t* kv_object_check::report_same_names() {
  const auto same = kv_same_names(names_);
  if (same.empty()) return nullptr;
  auto& finding = add(wording_.same_name_rule, wording_.same_name);
  std::string words = "properties with same name : \"";
  words.append(names_.names[same.front().first]).append("\" ");
  finding.lines.push_back({kv_check_head::item, std::move(words)});
  return &finding;
}
