// EXPlain NET: why a flat net is what it is.
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/find/net_choice.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "expand/explain.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/objects_of.h"
#include "gx/db/place/geometry.h"
#include "gx/db/place/placement.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/records.h"
#include "gx/text/strings.h"

namespace {

constexpr std::string_view explain_net_words = "# EXPlain NET ";

std::string in_quotes(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::string kind_words(const kv_memory_netlist_t& netlist, std::int32_t net) {
  constexpr std::string_view kinds[] = {"local", "bus", "port", "child", "global"};
  const auto kind = static_cast<std::size_t>(netlist.net_kind(net));
  std::string words(kind < std::size(kinds) ? kinds[kind] : "local");
  if (netlist.is_bus(net)) {
    const std::int32_t first = netlist.first_member(net);
    words += " [" + std::to_string(netlist.bus_start(net)) + ":" +
             std::to_string(netlist.bus_end(net)) + "], members " + std::to_string(first) + " to " +
             std::to_string(first + netlist.width(net) - 1);
  } else if (const std::int32_t bus = netlist.bus(net); bus != 0) {
    if (netlist.net_kind(net) != kv_kind_global) words = "bit";
    words += ", bit " + std::to_string(netlist.bit(net)) + " of bus " +
             in_quotes(netlist.path({kv_named::net, bus})) + " (" + std::to_string(bus) + ")";
  }
  return words;
}

// What of a net is listed: all of it, or the share of a block and what is below it.
struct share_t {
  std::string block;  // "": all

  bool holds(std::string_view path) const {
    const bool is_below = path.size() == block.size() || path.substr(block.size(), 1) == "/";
    return block.empty() || (gx_equal(block, path) && is_below);
  }
};

// Where the wires of a net are drawn, for nets whose name no drawing shows; each sheet read once.
class places_t {
 public:
  // " at 1.25 0.8"; empty when that is not to be found.
  std::string of(const std::string& sheet, int net) {
    const auto [at, is_new] = files_.try_emplace(sheet);
    if (is_new) at->second = gx_load_file(sheet);
    if (!at->second.file) return "";
    const auto& file = *at->second.file;
    if (gx_object_as<gx_object_net_rec_t>(file, net) == nullptr) return "";
    for (const int segment : lb_segments(file, net)) {
      const auto box = gx_object_abs_origin_bounds(file, segment, 0).bounds;
      if (gx_bounds_empty(box)) continue;
      std::string text(gx_view(kv_point_text({box.xmin, box.ymin})));
      while (text.ends_with(' ')) text.pop_back();
      return " at " + text;
    }
    return "";
  }

 private:
  std::map<std::string, gx_load_t> files_;
};

// The answer about one net.
class explanation_t {
 public:
  explanation_t(const kv_memory_netlist_t& netlist, kv_explainer_t& explainer, const share_t& share,
                std::size_t most_lines)
      : netlist_(netlist), explainer_(explainer), share_(share), most_lines_(most_lines) {}

  void tell(std::int32_t net) {
    std::vector<kv_drawn_t> drawn;
    for (const auto& each : explainer_.joined(net))
      if (share_.holds(path_of(each))) drawn.push_back(each);
    std::vector<kv_object_t> pins;
    for (const std::int32_t index : netlist_.pins(net)) {
      const kv_object_t pin{kv_named::pin, index};
      if (share_.holds(netlist_.path(pin))) pins.push_back(pin);
    }
    tell_summary(net, drawn, pins);
    lines_ = 0;
    for (const auto& each : drawn)
      if (has_room()) tell_drawn(net, each);
    for (const kv_object_t pin : pins)
      if (has_room()) tell_pin(pin);
    if (lines_ > most_lines_) {
      gx_tell_wrapped("# ... and " + std::to_string(lines_ - most_lines_) + " more : EXPlain NET " +
                      std::string(netlist_.path({kv_named::net, net})) + " ALl ");
    }
  }

 private:
  // Counts a line; false when it is one too many.
  bool has_room() { return ++lines_ <= most_lines_; }

  std::string_view path_of(const kv_drawn_t& drawn) const {
    return netlist_.path(drawn.child != 0 ? kv_object_t{kv_named::net_child, drawn.child}
                                          : kv_object_t{kv_named::net, drawn.net});
  }

  void tell_summary(std::int32_t net, const std::vector<kv_drawn_t>& drawn,
                    const std::vector<kv_object_t>& pins) const {
    std::set<std::int32_t> visits;
    for (const auto& each : drawn) visits.insert(each.visit);
    int in = 0, out = 0, both = 0;
    for (const kv_object_t pin : pins) {
      const std::int16_t type = netlist_.io_type(pin);
      ++(type == kv_io_in ? in : type == kv_io_out ? out : both);
    }
    const std::string path(netlist_.path({kv_named::net, net})), kind = kind_words(netlist_, net);
    gx_tell_wrapped("# NET " + std::to_string(net) + " : " + in_quotes(path) + " name " +
                    in_quotes(netlist_.name(net)));
    gx_tell_wrapped("#   kind " + kind);
    gx_tell_wrapped("#   nets " + std::to_string(drawn.size()) + " on sheets " +
                    std::to_string(visits.size()) + " ; pins in " + std::to_string(in) + " out " +
                    std::to_string(out) + " both " + std::to_string(both));
    kv_record("net", {{"index", net},
                      {"path", path},
                      {"name", netlist_.name(net)},
                      {"kind", kind},
                      {"nets", drawn.size()},
                      {"sheets", visits.size()},
                      {"pins_in", in},
                      {"pins_out", out},
                      {"pins_both", both}});
  }

  void tell_drawn(std::int32_t net, const kv_drawn_t& drawn) {
    const std::string& sheet = explainer_.sheet(drawn.visit).file_path;
    const std::string path(path_of(drawn)), id = "N_" + std::to_string(drawn.object_id);
    std::string reason = explainer_.reason(net, drawn);
    if (reason.empty()) reason = "the net itself";
    const std::string at = path.ends_with("/" + id) ? places_.of(sheet, drawn.object_id) : "";
    gx_tell_wrapped("#   " + path + " : " + sheet + " " + id + at + " : " + reason);
    kv_record(
        "joined",
        {{"path", path}, {"sheet", sheet}, {"object_id", drawn.object_id}, {"reason", reason}});
  }

  void tell_pin(kv_object_t pin) const {
    constexpr std::string_view ways[] = {"", "in", "out", "in/out", "in/out"};  // by kv_io_type
    const std::string_view way = gx_at(ways, netlist_.io_type(pin));
    const std::string path(netlist_.path(pin));
    gx_tell_wrapped("#   pin " + std::string(way) + " " + path);
    kv_record("pin", {{"path", path}, {"way", way}});
  }

  const kv_memory_netlist_t& netlist_;
  kv_explainer_t& explainer_;
  const share_t& share_;
  std::size_t most_lines_, lines_ = 0;
  places_t places_;
};

// Words 4 and 5: ALl, or IN and a block. Nothing after the refusal.
struct extent_t {
  share_t share;
  std::size_t most_lines = 200;
};
std::optional<extent_t> wanted_extent(const kv_command_t& command, const kv_expanded_t& expanded) {
  extent_t extent;
  if (command.count() < 4) return extent;
  const bool is_all = gx_equal("AL", command.word(4)) && command.count() == 4;
  if (!is_all && (!gx_iden("IN", command.word(4)) || command.count() != 5)) {
    kv_refuse(explain_net_words, command, "# !! Error :  4th parameter incorrect ? ", 3);
    return std::nullopt;
  }
  if (is_all) {
    extent.most_lines = SIZE_MAX;
    return extent;
  }
  std::string block(kv_file_name(command.word(5)));
  while (block.ends_with('/')) block.pop_back();
  if (!block.empty() && !block.starts_with('/')) block.insert(0, "/");
  extent.share = {block};
  if (block.empty() || kv_visit_at(expanded, block + "/") >= 0) return extent;
  kv_refuse(explain_net_words, command, "# !! Error :  5th parameter incorrect ? ", 3);
  return std::nullopt;
}

void kv_explain_net_cmd(const kv_command_t& command) {
  const auto expanded = kv_expanded();
  if (!expanded) return kv_refuse(explain_net_words, command, kv_no_expansion, 3);
  const auto extent = wanted_extent(command, *expanded);
  if (!extent) return;
  const auto nets = kv_wanted_nets(explain_net_words, command, *expanded);
  if (!nets) return;
  const gx_list_batch_t batch;
  kv_explainer_t explainer(expanded->netlist, expanded->origins);
  explanation_t explanation(expanded->netlist, explainer, extent->share, extent->most_lines);
  for (const std::int32_t net : *nets) explanation.tell(net);
  kv_echo(" EXPlain NET ", command, 3);
}

constexpr kv_command_row_t explain_rows[] = {
    {{"EXP", "NET"},
     "EXPlain NET [path [ALl or IN [block]]]",
     kv_explain_net_cmd,
     explain_net_words,
     3},
};

}  // namespace

kv_command_rows_t kv_explain_commands() { return explain_rows; }
