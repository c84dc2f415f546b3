#include "app/check/run_messages.h"

#include <algorithm>

#include "netlist/path_index.h"

namespace {

constexpr kv_rule found_by_message[] = {kv_rule::bus_range, kv_rule::run};

// Where a path is drawn: the pin, else the part, else the net; of what the run had not come to, the
// block that it is in.
kv_place_t place_of(const kv_netlist_findings_t& found, const kv_memory_paths_t& paths,
                    std::string_view path) {
  constexpr kv_named first_to_last[] = {kv_named::pin,   kv_named::pinm, kv_named::inst,
                                        kv_named::macro, kv_named::net,  kv_named::net_child};
  for (; !path.empty(); path = path.substr(0, path.rfind('/'))) {
    const std::string key = kv_path_key(path);
    const auto hits = paths.find({&key, 1}, SIZE_MAX);
    for (const kv_named what : first_to_last) {
      const auto hit = std::ranges::find_if(
          hits, [&](kv_object_t h) { return h.what == what && paths.path(h) == path; });
      if (hit != hits.end()) return kv_place_of(found.design, found.origins, *hit);
    }
  }
  return {};
}

}  // namespace

void kv_run_messages::take(const kv_told_t& told) {
  const kv_rule rule = kv_rule_of(told.code);
  const bool is_found = std::ranges::find(found_by_message, rule) != std::end(found_by_message);
  if (kv_row_of(told.code).kind != kv_message_kind::error || !is_found) return;
  std::string words = kv_words_of(told);
  if (words.empty() || !known_.insert(words).second) return;
  messages_.push_back({rule, std::string(told.path), std::move(words)});
}

void kv_run_messages::find(const kv_netlist_findings_t& found) const {
  if (messages_.empty()) return;
  const kv_memory_paths_t paths(found.design);
  for (const kv_rule rule : found_by_message) {
    for (const auto& message : messages_) {
      if (message.rule != rule) continue;
      found.add(rule, message.path, place_of(found, paths, message.path), message.words);
    }
  }
}
