#include "expand/path_index.h"

#include <algorithm>
#include <bit>

#include "gx/text/at.h"

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

// Those that have paths of their own, and those that bear pins.
constexpr kv_named own_kinds[] = {kv_named::inst, kv_named::macro, kv_named::net,
                                  kv_named::net_child};
constexpr kv_named owner_kinds[] = {kv_named::inst, kv_named::macro};

// Calls `visit` with the records of a kind.
template <typename Visit>
auto with_records(const kv_design_t& design, kv_named what, Visit visit) {
  switch (what) {
    case kv_named::inst:
      return visit(design.insts);
    case kv_named::macro:
      return visit(design.macros);
    case kv_named::net:
      return visit(design.nets);
    case kv_named::net_child:
      return visit(design.net_childs);
    case kv_named::pin:
      return visit(design.pins);
    case kv_named::pinm:
      break;
  }
  return visit(design.pinms);
}

// Calls `visit` with each pin of an instance or macro; those of one are there whole or not at all.
template <typename Visit>
void each_pin(const kv_design_t& design, kv_hit_t owner, Visit visit) {
  const auto visit_all = [&](const auto& record, kv_named what) {
    const std::int32_t count = record.first_pin_ind == 0 ? 0 : record.nb_of_pin;
    for (std::int32_t i = 0; i < count; ++i) visit(kv_hit_t{what, record.first_pin_ind + i});
  };
  if (owner.what == kv_named::inst) visit_all(design.insts[owner.index], kv_named::pin);
  if (owner.what == kv_named::macro) visit_all(design.macros[owner.index], kv_named::pinm);
}

}  // namespace

std::string kv_path_key(std::string_view path) {
  std::string key(path);
  std::ranges::transform(key, key.begin(), folded);
  return key;
}

std::string_view kv_path_index_t::path(kv_hit_t hit) const {
  return with_records(design_, hit.what, [&](const auto& records) {
    return kv_text(design_, records[hit.index].sim_path);
  });
}

kv_hit_t kv_path_index_t::hit_of(std::uint32_t number) const {
  const auto behind = std::ranges::upper_bound(first_, number);
  const auto kind = static_cast<std::size_t>(behind - first_.begin()) - 1;
  return {static_cast<kv_named>(kind), static_cast<std::int32_t>(number - first_[kind]) + 1};
}

kv_path_index_t::kv_path_index_t(const kv_design_t& design) : design_(design) {
  std::uint32_t number = 1;
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    first_[kind] = number;
    number += with_records(design, own_kinds[kind], [](const auto& records) {
      return static_cast<std::uint32_t>(records.count);
    });
  }
  first_[kinds] = number;
  last_with_.resize(std::bit_ceil(number));
  before_.resize(number);
  const std::size_t mask = last_with_.size() - 1;
  number = 0;
  for (std::size_t kind = 0; kind < kinds; ++kind) {
    with_records(design, own_kinds[kind], [&](const auto& records) {
      for (std::int32_t index = 1; index <= records.count; ++index) {
        auto& last = last_with_[hash_of(kv_text(design, records[index].sim_path)) & mask];
        before_[++number] = last;
        last = number;
      }
    });
  }
  net_of_child_.resize(static_cast<std::size_t>(design.net_childs.count) + 1);
  for (std::int32_t net = 1; net <= design.nets.count; ++net) {
    for (std::int32_t child = design.nets[net].first_child; child != 0;
         child = kv_record(design.net_childs, child).next_child) {
      gx_at(net_of_child_, child) = net;
    }
  }
}

bool kv_path_index_t::has_path(kv_hit_t hit, std::string_view key) const {
  const std::string_view found = path(hit);
  return found.size() == key.size() && begins_with(found, key);
}

void kv_path_index_t::find_whole(std::string_view key, std::vector<kv_hit_t>& hits) const {
  const std::size_t at = hash_of(key) & (last_with_.size() - 1);
  for (std::uint32_t number = last_with_[at]; number != 0; number = before_[number]) {
    const kv_hit_t hit = hit_of(number);
    if (has_path(hit, key)) hits.push_back(hit);
  }
}

// Names may hold a "/" themselves, so whatever ends before one may bear the pin.
std::vector<kv_hit_t> kv_path_index_t::find_key(std::string_view key, std::size_t most) const {
  std::vector<kv_hit_t> hits, owners;
  find_whole(key, hits);
  for (auto slash = key.find('/', 1); slash != key.npos; slash = key.find('/', slash + 1))
    find_whole(key.substr(0, slash), owners);
  for (const kv_hit_t owner : owners) {
    each_pin(design_, owner, [&](kv_hit_t pin) {
      if (has_path(pin, key)) hits.push_back(pin);
    });
  }
  std::ranges::sort(hits);
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
  if (keys.empty()) return {};
  std::vector<std::vector<kv_hit_t>> hits(keys.size());
  const auto take = [&](kv_hit_t hit) {
    const std::string_view found = path(hit);
    for (std::size_t i = 0; i < keys.size(); ++i)
      if (hits[i].size() < most && begins_with(found, keys[i])) hits[i].push_back(hit);
  };
  // Only where one of the two begins with the other can pins be met.
  const auto take_pins = [&](kv_hit_t owner) {
    const std::string_view found = path(owner);
    const bool may_bear = std::ranges::any_of(keys, [&](std::string_view key) {
      const std::size_t common = std::min(key.size(), found.size());
      return begins_with(found.substr(0, common), key.substr(0, common));
    });
    if (may_bear) each_pin(design_, owner, take);
  };
  const auto each = [&](kv_named what, const auto& visit) {
    const auto count =
        with_records(design_, what, [](const auto& records) { return records.count; });
    for (std::int32_t index = 1; index <= count && hits.front().size() < most; ++index)
      visit(kv_hit_t{what, index});
  };
  for (const kv_named what : own_kinds) each(what, take);
  for (const kv_named what : owner_kinds) each(what, take_pins);
  const auto first = std::ranges::find_if(hits, [](const auto& of_key) { return !of_key.empty(); });
  return first == hits.end() ? std::vector<kv_hit_t>{} : std::move(*first);
}

std::int32_t kv_path_index_t::net_of_child(std::int32_t child) const {
  return gx_at(net_of_child_, child);
}
