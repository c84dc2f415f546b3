// The line by line reading of a data listing.
#include "tests/program/listing.h"

#include "tests/support/scratch_directory.h"

namespace {

// "label : value", the label without its outer blanks, the value without quotes.
struct entry_t {
  std::string label, value;
};

entry_t entry_of(std::string_view line) {
  const auto trimmed = [](std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '"')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '"')) text.remove_suffix(1);
    return std::string(text);
  };
  const auto colon = line.find(':');
  if (colon == std::string_view::npos) return {};
  return {trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1))};
}

class reader {
 public:
  listing_t run(std::string_view text) {
    for (const auto& line : split_lines(text)) take(line);
    finish();
    return std::move(listing_);
  }

 private:
  enum class block { head, instance, net, macro, inner_pin, child, net_pin };

  void take(const std::string& line) {
    if (line == "# KIVO generate DATA : END : OK  ") listing_.complete = true;
    const auto [label, value] = entry_of(line);
    if (label.starts_with("nbof") || label.starts_with("num_")) {
      listing_.counts[label] = std::stoi(value);
    } else if (label == "Instance" || label == "NET" || label == "MACRO") {
      finish();
      kind_ = block_ = label == "Instance" ? block::instance
                       : label == "NET"    ? block::net
                                           : block::macro;
      net_.index = std::stoi(value);
    } else if (label == "Pin") {
      block_ = block::inner_pin;
    } else if (label == "NET_CHILD") {
      block_ = block::child;
    } else if (label == "PIN_IN" || label == "PIN_OUT") {
      block_ = block::net_pin;
    } else if (label == "sim_path") {
      if (block_ == kind_) path_ = value;
      if (block_ == block::child) net_.children.insert(value);
      if (block_ == block::net_pin) net_.pins.insert(value);
    } else if (block_ == kind_) {
      own(label, value, line);
    }
  }

  void own(const std::string& label, const std::string& value, const std::string& line) {
    if (label == "name") net_.name = value;
    if (label == "net_type") net_.type = std::stoi(value);
    if (label == "net_kind") net_.kind = std::stoi(value);
    if (label.starts_with("Prop ")) {  // Prop NET : name : "W" prop_type  : 3
      const auto begin = line.find('"') + 1;
      property_ = line.substr(begin, line.find('"', begin) - begin);
    } else if (label.starts_with("prop_")) {
      auto& text = net_.properties[property_];
      text += (text.empty() ? "" : " ") + value;
    }
  }

  void finish() {
    if (kind_ == block::instance) listing_.instances[path_] = net_;
    if (kind_ == block::macro) listing_.macros[path_] = net_;
    if (kind_ == block::net) listing_.nets[path_] = net_;
    net_ = {};
  }

  listing_t listing_;
  block kind_ = block::head, block_ = block::head;
  listing_net_t net_;
  std::string path_, property_;
};

}  // namespace

listing_t read_listing(std::string_view text) { return reader().run(text); }
