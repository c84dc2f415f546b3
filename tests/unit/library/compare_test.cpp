// The list of changes between two designs: applied to the old one it gives the new one.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "compare/changes.h"
#include "compare/words.h"

namespace {

struct leaf_t {
  std::map<std::string, std::string> values, pins;  // pins: the path of the net, "" for none
  friend bool operator==(const leaf_t&, const leaf_t&) = default;
};
struct design_t {
  std::set<std::string> blocks;
  std::map<std::string, leaf_t> leaves;
};

kv_compared_design_t records_of(const design_t& design) {
  kv_compared_design_t records;
  std::map<std::string, std::int32_t> blocks{{"", 0}}, nets{{"", 0}};
  const auto split = [&](std::string_view path) {
    const auto slash = path.rfind('/');
    return std::pair{blocks.at(std::string(path.substr(0, slash))), path.substr(slash + 1)};
  };
  for (const std::string& path : design.blocks) {
    const auto [parent, name] = split(path);
    blocks[path] = static_cast<std::int32_t>(records.blocks.size());
    records.blocks.push_back({path, name, parent});
  }
  for (const auto& [path, leaf] : design.leaves) {
    const auto [block, name] = split(path);
    kv_compared_instance_t inst{
        path, name, block, records.values.size(), 0, records.terminals.size(), 0};
    for (const auto& [value, text] : leaf.values) records.values.push_back({value, text});
    for (const auto& [pin, net] : leaf.pins) {
      const auto open = pin.find('[');
      const int bit = open == pin.npos ? -1 : pin[open + 1] - '0';
      const auto [at, is_new] = nets.try_emplace(net, static_cast<std::int32_t>(nets.size()));
      if (is_new) {
        const auto [in, own] = split(net);
        records.nets.push_back({net, own, in});
      }
      records.terminals.push_back({std::string_view(pin).substr(0, open), bit, at->second});
    }
    kv_order_last(records, inst);
    records.instances.push_back(inst);
  }
  return records;
}

std::vector<kv_change_t> changes_of(const design_t& old, const design_t& now) {
  return kv_compare(records_of(old), records_of(now));
}

// What the changes make of a design, and whether all that they say of it is true.
std::map<std::string, leaf_t> applied(const design_t& old,
                                      const std::vector<kv_change_t>& changes) {
  std::map<std::string, std::string> branches, insts, nets;
  std::map<std::string, std::pair<std::string, std::string>> pins;
  std::set<std::string> gone, gone_branches;
  std::map<std::string, std::int32_t> new_branches;
  std::map<std::string, leaf_t> result;
  for (const kv_change_t& change : changes) {
    if (change.change == kv_change::branch_renamed) branches[change.before] = change.after;
    if (change.change == kv_change::branch_gone) gone_branches.insert(change.before);
    if (change.change == kv_change::branch_new) new_branches[change.after] = change.leaves;
    if (change.change == kv_change::instance_gone) gone.insert(change.before);
    if (change.change == kv_change::instance_renamed) insts[change.before] = change.after;
    if (change.change == kv_change::net_renamed) nets[change.before] = change.after;
    for (const auto& pin : change.pins) {
      if (change.change == kv_change::instance_new) {
        result[change.after].pins[pin.pin] = pin.after;
      } else {
        EXPECT_TRUE(pins.try_emplace(pin.pin, pin.before, pin.after).second) << pin.pin;
        EXPECT_EQ(pin.before, change.before);
        EXPECT_EQ(pin.after, change.after);
      }
    }
    if (change.change != kv_change::instance_new) continue;
    for (auto& [branch, leaves] : new_branches)
      if (change.after.starts_with(branch + '/')) --leaves;
    for (const auto& value : change.values) result[change.after].values[value.name] = value.after;
  }
  // What is on a part of a net comes from this net alone; what was on one joined went there alone.
  for (const kv_change_t& of : changes) {
    const bool split = of.change == kv_change::net_split;
    if (!split && of.change != kv_change::net_joined) continue;
    for (const kv_change_t& other : changes) {
      if (&other == &of || (other.pins.empty() && other.change != kv_change::net_renamed)) continue;
      EXPECT_FALSE(split ? other.after == of.after : other.before == of.before) << of.before;
    }
  }
  const auto moved = [&](const std::map<std::string, std::string>& own, const std::string& path) {
    if (const auto at = own.find(path); at != own.end()) return at->second;
    for (auto slash = path.rfind('/'); slash != path.npos && slash > 0;
         slash = path.rfind('/', slash - 1)) {
      const auto at = branches.find(path.substr(0, slash));
      if (at != branches.end()) return at->second + path.substr(slash);
    }
    return path;
  };
  for (const auto& [path, leaf] : old.leaves) {
    if (gone.erase(path) == 1) continue;
    if (std::ranges::any_of(gone_branches, [&own = path](const auto& branch) {
          return own.starts_with(branch + '/');
        }))
      continue;
    leaf_t now = leaf;
    const std::string after = moved(insts, path);
    for (const kv_change_t& change : changes) {
      if (change.change != kv_change::values_changed || change.before != path) continue;
      EXPECT_EQ(change.after, after);
      for (const auto& value : change.values) {
        EXPECT_EQ(now.values[value.name], value.before);
        now.values[value.name] = value.after;
        if (value.after.empty()) now.values.erase(value.name);
      }
    }
    for (auto& [pin, net] : now.pins) {
      const auto at = pins.find(after + '/' + pin);
      if (at == pins.end()) {
        net = moved(nets, net);
      } else {
        EXPECT_EQ(at->second.first, net) << at->first;
        net = at->second.second;
        pins.erase(at);
      }
    }
    EXPECT_TRUE(result.try_emplace(after, now).second) << after;
  }
  EXPECT_TRUE(gone.empty() && pins.empty());
  for (const auto& [branch, leaves] : new_branches) EXPECT_EQ(leaves, 0) << branch;
  return result;
}

std::string told(const kv_change_t& change) {
  return kv_change_sign(change.change) + (' ' + kv_change_text(change));
}
std::vector<std::string> told(const design_t& old, const design_t& now) {
  std::vector<std::string> lines;
  for (const kv_change_t& change : changes_of(old, now))
    if (!change.in_new_branch) lines.push_back(told(change));
  return lines;
}

// --- random designs and edits

class editor_t {
 public:
  explicit editor_t(unsigned seed) : random_(seed) {}

  design_t make() {
    design_t design;
    for (int i = below(6); i > 0; --i) design.blocks.insert(in_some_block(design, "X"));
    for (int i = 2 + below(14); i > 0; --i) add_leaf(design);
    return design;
  }
  void edit(design_t& design) {
    if (design.leaves.empty()) return add_leaf(design);
    auto at = std::next(design.leaves.begin(), below(static_cast<int>(design.leaves.size())));
    const std::string path = at->first, net = at->second.pins.begin()->second;
    switch (below(9)) {
      case 0:
        return add_leaf(design);
      case 1:
        design.leaves.erase(at);
        return;
      case 2:
        at->second.values[below(2) == 0 ? "AREA" : "VALUE"] = std::to_string(below(3));
        return;
      case 3: {
        const std::string other = in_some_block(design, "R");
        if (design.leaves.contains(other)) return;
        auto node = design.leaves.extract(at);
        node.key() = other;
        design.leaves.insert(std::move(node));
        return;
      }
      case 4:  // a pin elsewhere
        at->second.pins.begin()->second = some_net(design);
        return;
      case 5: {  // nets joined, or a net renamed
        const std::string other = some_net(design);
        for (auto& [name, leaf] : design.leaves)
          for (auto& [pin, on] : leaf.pins)
            if (on == net) on = other;
        return;
      }
      case 6: {  // a net split
        const std::string other = some_net(design);
        for (auto& [name, leaf] : design.leaves)
          for (auto& [pin, on] : leaf.pins)
            if (on == net && below(2) == 0) on = other;
        return;
      }
      case 7: {  // a branch gone
        if (design.blocks.empty()) return;
        const std::string block = in_some_block(design, "");
        const std::string top = block.substr(0, block.rfind('/'));
        const auto inside = [&](const std::string& name) {
          return name == top || name.starts_with(top + '/');
        };
        if (top.empty()) return;
        std::erase_if(design.blocks, inside);
        std::erase_if(design.leaves, [&](const auto& of) { return inside(of.first); });
        for (auto& [name, leaf] : design.leaves)
          for (auto& [pin, on] : leaf.pins)
            if (inside(on)) on = "/N0";
        return;
      }
      default:
        rename_branch(design);
    }
  }

 private:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  std::string in_some_block(const design_t& design, const std::string& letter) {
    const int which = below(static_cast<int>(design.blocks.size()) + 1);
    const std::string block = which == 0 ? "" : *std::next(design.blocks.begin(), which - 1);
    return block + '/' + letter + std::to_string(below(12));
  }
  std::string some_net(const design_t& design) {
    return below(8) == 0 ? "" : in_some_block(design, "N");
  }
  void add_leaf(design_t& design) {
    leaf_t leaf{{{"MODEL", below(2) == 0 ? "R" : "C"}}, {}};
    if (below(2) == 0) leaf.values["VALUE"] = std::to_string(below(3));
    leaf.pins["A"] = some_net(design);
    leaf.pins["B"] = some_net(design);
    if (below(4) == 0) leaf.pins["C"] = some_net(design);
    if (below(4) == 0) leaf.pins["D[0]"] = leaf.pins["D[1]"] = some_net(design);
    design.leaves.insert_or_assign(in_some_block(design, "R"), leaf);
  }
  void rename_branch(design_t& design) {
    if (design.blocks.empty()) return;
    const std::string from =
        *std::next(design.blocks.begin(), below(static_cast<int>(design.blocks.size())));
    const std::string to = from.substr(0, from.rfind('/')) + "/X" + std::to_string(below(20));
    if (design.blocks.contains(to)) return;
    const auto renamed = [&](const std::string& path) {
      return path == from || path.starts_with(from + '/') ? to + path.substr(from.size()) : path;
    };
    design_t now;
    for (const std::string& block : design.blocks) now.blocks.insert(renamed(block));
    for (auto& [path, leaf] : design.leaves) {
      for (auto& [pin, net] : leaf.pins) net = renamed(net);
      now.leaves[renamed(path)] = leaf;
    }
    design = now;
  }

  std::mt19937 random_;
};

}  // namespace

TEST(Compare, ChangesMakeTheNewDesignOfTheOld) {
  std::size_t in_all = 0;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    editor_t editor(seed);
    const design_t old = editor.make();
    EXPECT_TRUE(changes_of(old, old).empty()) << seed;
    design_t now = old;
    for (unsigned i = 0; i < 1 + seed % 8; ++i) editor.edit(now);
    const auto changes = changes_of(old, now);
    in_all += changes.size();
    if (applied(old, changes) == now.leaves && !HasFailure()) continue;
    ADD_FAILURE() << "seed " << seed;
    for (const kv_change_t& change : changes) std::printf("%s\n", told(change).c_str());
    return;
  }
  EXPECT_LE(in_all, 19228U);  // longer lists could be true as well
}

TEST(Compare, ToldAsAReviewerWouldTellIt) {
  const auto leaf = [](std::string value, std::string a, std::string b) {
    return leaf_t{{{"MODEL", "R"}, {"VALUE", value}}, {{"A", a}, {"B", b}}};
  };
  const design_t old{{"/X1", "/X1/Y"},
                     {{"/R1", leaf("1k", "/IN", "/OUT")},
                      {"/R2", leaf("2k", "/IN", "/OUT")},
                      {"/R3", leaf("3k", "/IN", "/GND")},
                      {"/R4", leaf("4k", "/GND", "/OUT")},
                      {"/X1/R1", leaf("1k", "/IN", "/X1/N")},
                      {"/X1/Y/R1", leaf("1k", "/X1/N", "/GND")}}};
  const auto after = [&](auto edit) {
    design_t now = old;
    edit(now);
    return told(old, now);
  };
  using lines_t = std::vector<std::string>;
  EXPECT_EQ(after([&](design_t& d) { d.leaves["/R1"].values["VALUE"] = "5k"; }),
            lines_t{"~ instance /R1: VALUE 1k -> 5k"});
  EXPECT_EQ(after([&](design_t& d) {
              for (auto& [path, of] : d.leaves)
                for (auto& [pin, net] : of.pins)
                  if (net == "/OUT") net = "/Q";
            }),
            lines_t{"~ net /OUT is now /Q"});
  EXPECT_EQ(
      after([&](design_t& d) {
        d.leaves["/R1"].pins["A"] = "";
        d.leaves["/R2"].pins["A"] = "";
        d.leaves["/R5"] = leaf("5k", "/IN", "/OUT");
      }),
      (lines_t{"+ instance /R5 is new: MODEL=R, VALUE=5k, A on /IN, B on /OUT",
               "~ pin /R1/A moved from /IN to no net", "~ pin /R2/A moved from /IN to no net"}));
  const design_t lone{{}, {{"/R1", leaf("1k", "", "/B")}}};
  EXPECT_EQ(told(lone, {{}, {{"/R1", leaf("1k", "/A", "/B")}}}),
            lines_t{"~ pin /R1/A moved from no net to /A"});
  // A net is known by its pins, though another has its name now.
  EXPECT_EQ(after([&](design_t& d) {
              for (auto& [path, of] : d.leaves)
                if (of.pins["A"] == "/IN") of.pins["A"] = "/Z";
              d.leaves["/R9"] = {{}, {{"A", "/IN"}}};
            }),
            (lines_t{"+ instance /R9 is new: A on /IN", "~ net /IN is now /Z"}));
  EXPECT_EQ(
      after([&](design_t& d) { d.leaves["/R1"].pins["A"] = d.leaves["/R2"].pins["A"] = "/S"; }),
      lines_t{"~ net /IN is split: now on /S are /R1/A, /R2/A"});
  EXPECT_EQ(after([&](design_t& d) {
              for (auto& [path, of] : d.leaves)
                for (auto& [pin, net] : of.pins)
                  if (net == "/OUT") net = "/GND";
            }),
            lines_t{"~ net /OUT is joined into /GND with /R1/B, /R2/B, /R4/B"});
  EXPECT_EQ(after([&](design_t& d) { d.leaves["/R3"].pins["B"] = "/OUT"; }),
            lines_t{"~ pin /R3/B moved from /GND to /OUT"});
  EXPECT_EQ(after([&](design_t& d) {
              d.leaves["/R3"].values = {{"MODEL", "R"}, {"W", "1"}, {"X", "\n"}};
              d.leaves["/R7"] = {{{"MODEL", "C"}}, {{"A", ""}, {"D[0]", "/IN"}, {"D[1]", "/OUT"}}};
              d.leaves["/R8"].pins["A"] = "/IN";
              d.blocks.erase("/X1/Y");
              d.leaves.erase("/X1/Y/R1");
            }),
            (lines_t{"- branch /X1/Y is gone with 1 instance",
                     "+ instance /R7 is new: MODEL=C, A on no net, D[0] on /IN, D[1] on /OUT",
                     "+ instance /R8 is new: A on /IN",
                     "~ instance /R3: VALUE 3k -> none, W none -> 1, X none -> \\x0a"}));
  EXPECT_EQ(after([&](design_t& d) {
              d.leaves["/R1"].pins["B"] = d.leaves["/R2"].pins["B"] = "/Q";
              d.leaves["/R4"].pins["B"] = d.leaves["/R3"].pins["B"] = "/Q";
            }),
            (lines_t{"~ net /OUT is now /Q", "~ pin /R3/B moved from /GND to /Q"}));
  EXPECT_EQ(after([&](design_t& d) {
              d.leaves["/R9"] = d.leaves["/R2"];
              d.leaves["/R8"] = leaf("8k", "/GND", "/OUT");
              for (const auto* const path : {"/R2", "/R3", "/R4"}) d.leaves.erase(path);
            }),
            (lines_t{"- instance /R3 is gone", "~ instance /R2 is now /R9",
                     "~ instance /R4 is now /R8", "~ instance /R8: VALUE 4k -> 8k"}));
  EXPECT_EQ(after([&](design_t& d) {
              d.blocks.clear();
              d.leaves.erase("/X1/R1");
              d.leaves.erase("/X1/Y/R1");
            }),
            lines_t{"- branch /X1 is gone with 2 instances"});
  EXPECT_EQ(after([&](design_t& d) {
              d.blocks.insert("/X2");
              d.blocks.insert("/X2/Y");
              d.leaves["/X2/Y/R1"] = leaf("1k", "/IN", "/X2/N");
              d.leaves["/X2/R1"] = leaf("1k", "/X2/N", "/GND");
            }),
            lines_t{"+ branch /X2 is new with 2 instances"});
  EXPECT_EQ(after([&](design_t& d) {
              d.blocks = {"/X7", "/X7/Y"};
              d.leaves.erase("/X1/R1");
              d.leaves.erase("/X1/Y/R1");
              d.leaves["/X7/R1"] = leaf("1k", "/IN", "/X7/N");
              d.leaves["/X7/Y/R1"] = leaf("8k", "/X7/N", "/GND");
            }),
            (lines_t{"~ branch /X1 is now /X7", "~ instance /X7/Y/R1: VALUE 1k -> 8k"}));
  // A value that is a number in one of the designs alone is the same as long as it is that number.
  struct kept_t {
    std::string text;
    bool is_number = false;
  };
  const auto changes = [](const kept_t& first, const kept_t& second) {
    const auto design = [](const kept_t& kept) {
      const leaf_t resistor{{{"W", kept.text}}, {}};
      return design_t{{}, {{"/R1", kept.text.empty() ? leaf_t{} : resistor}}};
    };
    const auto records = [](const design_t& of, bool is_number) {
      kv_compared_design_t compared = records_of(of);
      for (auto& value : compared.values) value.is_number = is_number;
      return compared;
    };
    const design_t before = design(first), now = design(second);
    return kv_compare(records(before, first.is_number), records(now, second.is_number)).size();
  };
  EXPECT_EQ(changes({"1e-06", true}, {"1u"}), 0U);
  EXPECT_EQ(changes({"2e-06", true}, {"1u"}), 1U);
  EXPECT_EQ(changes({"1000"}, {"1k"}), 1U);
  EXPECT_EQ(changes({"0", true}, {}), 0U);
  EXPECT_EQ(changes({"0"}, {}), 1U);
  // Branches of other values are found by the names in them.
  const auto marks = [](std::string first, std::string second, const char* value) {
    const leaf_t mark{{{"V", value}}, {}};
    return design_t{{first.substr(0, 3), second.substr(0, 3)}, {{first, mark}, {second, mark}}};
  };
  EXPECT_EQ(told(marks("/X1/M", "/X2/N", "1"), marks("/X3/N", "/X4/M", "2")),
            (lines_t{"~ branch /X1 is now /X4", "~ branch /X2 is now /X3",
                     "~ instance /X4/M: V 1 -> 2", "~ instance /X3/N: V 1 -> 2"}));
  // Branches that are alike are found by the nets that they are on.
  const design_t twins{{"/X1", "/X2"},
                       {{"/R1", leaf("1k", "/IN", "/OUT")},
                        {"/X1/R1", leaf("1k", "/IN", "/GND")},
                        {"/X2/R1", leaf("1k", "/OUT", "/GND")}}};
  const design_t others{{"/X3", "/X4"},
                        {{"/R1", leaf("1k", "/IN", "/OUT")},
                         {"/X3/R1", leaf("1k", "/OUT", "/GND")},
                         {"/X4/R1", leaf("1k", "/IN", "/GND")}}};
  EXPECT_EQ(told(twins, others), (lines_t{"~ branch /X1 is now /X4", "~ branch /X2 is now /X3"}));
}
