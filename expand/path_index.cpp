#include "expand/path_index.h"

#include <algorithm>
#include <bit>

namespace {

constexpr std::array<char, 256> folds = [] {
  std::array<char, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const char c = static_cast<char>(i);
    table[i] = c == '.' || c == ':' ? '/' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
  }
  return table;
}();

char folded(char c) { return folds[static_cast<unsigned char>(c)]; }

std::size_t hash_of(std::string_view path) {
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : path) hash = (hash ^ static_cast<unsigned char>(folded(c))) * 1099511628211U;
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

bool begins_with(std::string_view path, std::string_view key) {
  return path.size() >= key.size() &&
         std::equal(key.begin(), key.end(), path.begin(),
                    [](char wanted, char c) { return folded(c) == wanted; });
}

}  // namespace

std::string kv_path_key(std::string_view path) {
  std::string key(path);
  std::ranges::transform(key, key.begin(), folded);
  return key;
}

std::uint32_t kv_path_index_t::number_of(kv_hit_t hit) const {
  return first_[static_cast<std::size_t>(hit.what)] + static_cast<std::uint32_t>(hit.index) - 1;
}

std::string_view kv_path_index_t::path(kv_hit_t hit) const {
  return kv_text(design_, strings_[number_of(hit)]);
}

kv_hit_t kv_path_index_t::hit_of(std::uint32_t number) const {
  const auto behind = std::ranges::upper_bound(first_, number);
  const auto kind = static_cast<std::size_t>(behind - first_.begin()) - 1;
  return {static_cast<kv_named>(kind), static_cast<std::int32_t>(number - first_[kind]) + 1};
}

kv_path_index_t::kv_path_index_t(const kv_design_t& design) : design_(design) {
  std::size_t kind = 0;
  strings_.push_back(0);
  const auto take = [&](const auto& records) {
    first_[kind++] = static_cast<std::uint32_t>(strings_.size());
    for (std::int32_t index = 1; index <= records.count; ++index)
      strings_.push_back(records[index].sim_path);
  };
  take(design.insts);  // in the order of kv_named
  take(design.macros);
  take(design.nets);
  take(design.net_childs);
  take(design.pins);
  take(design.pinms);
  first_[kind] = static_cast<std::uint32_t>(strings_.size());
  last_with_.resize(std::bit_ceil(strings_.size()));
  before_.resize(strings_.size());
  const std::size_t mask = last_with_.size() - 1;
  for (std::uint32_t number = 1; number < strings_.size(); ++number) {
    auto& last = last_with_[hash_of(kv_text(design, strings_[number])) & mask];
    before_[number] = last;
    last = number;
  }
  net_of_child_.resize(static_cast<std::size_t>(design.net_childs.count) + 1);
  for (std::int32_t net = 1; net <= design.nets.count; ++net) {
    for (std::int32_t child = design.nets[net].first_child; child != 0;
         child = kv_record(design.net_childs, child).next_child) {
      net_of_child_[static_cast<std::size_t>(child)] = net;
    }
  }
}

std::vector<kv_hit_t> kv_path_index_t::find_key(std::string_view key, std::size_t most) const {
  std::vector<kv_hit_t> hits;
  const std::size_t at = hash_of(key) & (last_with_.size() - 1);
  for (std::uint32_t number = last_with_[at]; number != 0; number = before_[number]) {
    const std::string_view found = kv_text(design_, strings_[number]);
    if (found.size() == key.size() && begins_with(found, key)) hits.push_back(hit_of(number));
  }
  std::ranges::reverse(hits);
  if (hits.size() > most) hits.resize(most);
  return hits;
}

std::vector<kv_hit_t> kv_path_index_t::find(std::span<const std::string> keys,
                                            std::size_t most) const {
  for (const auto& key : keys) {
    auto hits = find_key(key, most);
    if (!hits.empty()) return hits;
  }
  return {};
}

std::vector<kv_hit_t> kv_path_index_t::find_beginning(std::span<const std::string> keys,
                                                      std::size_t most) const {
  std::vector<std::vector<kv_hit_t>> hits(keys.size());
  for (std::uint32_t number = 1; number < strings_.size(); ++number) {
    const std::string_view found = kv_text(design_, strings_[number]);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (hits[i].size() < most && begins_with(found, keys[i])) hits[i].push_back(hit_of(number));
    }
    if (!hits.empty() && hits.front().size() >= most) break;
  }
  const auto first = std::ranges::find_if(hits, [](const auto& of_key) { return !of_key.empty(); });
  return first == hits.end() ? std::vector<kv_hit_t>{} : std::move(*first);
}

std::int32_t kv_path_index_t::net_of_child(std::int32_t child) const {
  return net_of_child_[static_cast<std::size_t>(child)];
}
