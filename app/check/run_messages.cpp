#include "app/check/run_messages.h"

#include <algorithm>
#include <optional>

#include "gx/text/session_state.h"
#include "netlist/path_index.h"

namespace {

// How a message begins, and what is in it besides: the rule that it is a finding of. None: a rule
// of this check, or the check itself, tells the same.
struct known_t {
  std::string_view head, part;
  std::optional<kv_rule> rule;
};
constexpr known_t known[] = {
    {"# !! Error : Pin out of the range of its Bus", "", kv_rule::bus_range},
    {"# !! Pin of INStance", "not compatible", kv_rule::bus_range},
    {"# !! Pin of INStance", "not found", std::nullopt},
    {"# !! Error : Pin without Net", "", std::nullopt},
    {"# !! Error :2 differents globals", "", std::nullopt},
    {"# !! Error Different Globals", "", std::nullopt},
    {"# !! Error : Invalid Version in pathname", "", std::nullopt},
    {"# !! Error : Symbol of", "", std::nullopt},
    {"# !! Error on Version", "", std::nullopt},
    {"!! Error : Symbol of Symbol", "", std::nullopt},
    {"!! Error : Symbol File Version", "", std::nullopt},
    {"!! Error : Sheet of INStance", "", std::nullopt},
    {"#  !! Error : Sheet of INStance", "", std::nullopt},
    {"", "", kv_rule::run},
};

// Warnings, lines that count nothing, and those behind a message that was counted already.
bool is_no_message(std::string_view line) {
  constexpr std::string_view heads[] = {
      " RUN ",        "# Processing : ", "# !! Error no sheet found",
      "# !! : ",      "# ? Warning",     "!! Warning",
      "# !! WARN",    "# !! NET name",   "# !! STOre SIZe",
      "# !! Sheet : "};
  return std::ranges::any_of(heads, [&](std::string_view head) { return line.starts_with(head); });
}

// The first path in quotes; "" when there is none.
std::string_view path_in(std::string_view text) {
  const auto from = text.find("\"/");
  if (from == text.npos) return {};
  const auto to = text.find('"', from + 1);
  return text.substr(from + 1, to == text.npos ? to : to - from - 1);
}

std::string joined(const std::vector<std::string>& lines) {
  std::string words;
  for (std::string_view line : lines) {
    line.remove_prefix(std::min(line.find_first_not_of("#! ?"), line.size()));
    if (line.starts_with("Error :"))
      line.remove_prefix(std::min(line.find_first_not_of(' ', 7), line.size()));
    while (line.ends_with(' ')) line.remove_suffix(1);
    if (!words.empty()) words += ' ';
    words += line;
  }
  return words;
}

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

void kv_run_messages::take(std::string_view line) {
  if (gx_session.errors_in_all != errors_) flush();
  if (lines_.empty() && is_no_message(line)) return;
  if (lines_.empty()) errors_ = gx_session.errors_in_all;
  lines_.emplace_back(line);
}

void kv_run_messages::flush() {
  const bool is_error = gx_session.errors_in_all != errors_;
  errors_ = gx_session.errors_in_all;
  const auto lines = std::move(lines_);
  lines_.clear();
  if (!is_error || lines.empty()) return;
  const auto entry = std::ranges::find_if(known, [&](const known_t& k) {
    return lines.front().starts_with(k.head) && lines.front().find(k.part) != std::string::npos;
  });
  if (entry->rule && known_.insert(joined(lines)).second)
    messages_.push_back({*entry->rule, lines});
}

void kv_run_messages::find(const kv_netlist_findings_t& found) const {
  if (messages_.empty()) return;
  const kv_memory_paths_t paths(kv_memory_netlist_t(found.design));
  for (const auto rule : {kv_rule::bus_range, kv_rule::run}) {
    for (const auto& message : messages_) {
      if (message.rule != rule) continue;
      std::string words = joined(message.lines);
      const std::string path(path_in(words));
      found.add(rule, path, place_of(found, paths, path), std::move(words));
    }
  }
}
