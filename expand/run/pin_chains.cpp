// Appending pins to the chains of nets.
#include "expand/run/pin_chains.h"

#include <algorithm>
#include <limits>

namespace {

// The fields that make up the chains of one direction.
struct direction {
  std::int16_t kv_net_record_t::*count;
  std::int32_t kv_net_record_t::*first;
  std::int32_t kv_net_record_t::*last;
  bool kv_net_record_t::*full_told;
  std::int32_t kv_pin_record_t::*next;
  std::int32_t kv_pin_record_t::*ends;  // number of chains whose last pin it is
};
constexpr direction in{&kv_net_record_t::nb_pin_in,       &kv_net_record_t::first_pin_in_ind,
                       &kv_net_record_t::last_pin_in,     &kv_net_record_t::full_in_told,
                       &kv_pin_record_t::next_pin_in_ind, &kv_pin_record_t::ends_in};
constexpr direction out{&kv_net_record_t::nb_pin_out,       &kv_net_record_t::first_pin_out_ind,
                        &kv_net_record_t::last_pin_out,     &kv_net_record_t::full_out_told,
                        &kv_pin_record_t::next_pin_out_ind, &kv_pin_record_t::ends_out};

constexpr std::int16_t most_pins = std::numeric_limits<std::int16_t>::max();

// One chain takes the pin as its last.
template <direction D>
void put_last(kv_design_t& design, std::int32_t pin_ind, kv_pin_record_t& pin,
              kv_net_record_t& net) {
  if (net.*D.last == 0) {
    net.*D.first = pin_ind;
  } else {
    auto& tail = design.pins[net.*D.last];
    tail.*D.next = pin_ind;
    --(tail.*D.ends);
  }
  net.*D.last = pin_ind;
  ++(pin.*D.ends);
}

template <direction D>
void put_first(std::int32_t pin_ind, kv_pin_record_t& pin, kv_net_record_t& net) {
  pin.*D.next = net.*D.first;
  net.*D.first = pin_ind;
}

// One more on a chain: its counter stays at its largest value, the chain goes on.
template <direction D>
kv_chained count(kv_net_record_t& net) {
  if (net.*D.count < most_pins) {
    ++(net.*D.count);
    return kv_chained::all;
  }
  if (net.*D.full_told) return kv_chained::all;
  net.*D.full_told = true;
  return kv_chained::uncounted;
}

template <direction D>
kv_chained chain_on_net(kv_design_t& design, std::int32_t pin_ind, kv_net_record_t& net) {
  auto& pin = design.pins[pin_ind];
  if (net.*D.last == 0 || design.pins[net.*D.last].*D.ends == 1) {
    put_last<D>(design, pin_ind, pin, net);
  } else {
    put_first<D>(pin_ind, pin, net);
  }
  return count<D>(net);
}

// A last pin may be followed by the new one only if every chain that ends with it takes the new
// pin; `seen` counts those among the members asked for.
template <direction D>
kv_chained chain_on_members(kv_design_t& design, std::int32_t pin_ind, std::int32_t first_net,
                            std::int32_t nb_of_net) {
  const std::int32_t end = first_net + nb_of_net;
  auto& pin = design.pins[pin_ind];
  kv_chained result = kv_chained::all;
  for (std::int32_t n = first_net; n < end; ++n) {
    auto& net = design.nets[n];
    if (net.*D.last != 0) ++design.pins[net.*D.last].seen;
  }
  // What the first chain needs decides: an end (no link after the pin) or a head (its link).
  bool is_last = false, is_first = false;
  for (std::int32_t n = first_net; n < end; ++n) {
    auto& net = design.nets[n];
    const auto* tail = net.*D.last != 0 ? &design.pins[net.*D.last] : nullptr;
    const bool can_be_last = !is_first && (tail == nullptr || tail->seen >= tail->*D.ends);
    if (can_be_last) {
      is_last = true;
    } else if (tail != nullptr && !is_last && (!is_first || pin.*D.next == net.*D.first)) {
      put_first<D>(pin_ind, pin, net);
      result = std::max(result, count<D>(net));
      is_first = true;
      continue;
    } else {
      result = std::max(result, kv_chained::not_all);
      continue;
    }
    // `seen` goes down with `ends`, so that their comparison holds for the chains still to come.
    if (tail != nullptr) --design.pins[net.*D.last].seen;
    put_last<D>(design, pin_ind, pin, net);
    result = std::max(result, count<D>(net));
  }
  for (std::int32_t n = first_net; n < end; ++n) {
    if (design.nets[n].*D.last != 0) design.pins[design.nets[n].*D.last].seen = 0;
  }
  return result;
}

template <direction D>
kv_chained chain(kv_design_t& design, std::int32_t pin, std::int32_t first_net,
                 std::int32_t nb_of_net) {
  return nb_of_net == 1 ? chain_on_net<D>(design, pin, design.nets[first_net])
                        : chain_on_members<D>(design, pin, first_net, nb_of_net);
}

}  // namespace

kv_chained kv_chain_pin(kv_design_t& design, std::int32_t pin, std::int32_t first_net,
                        std::int32_t nb_of_net) {
  const std::int16_t type = design.pins[pin].io_type;
  kv_chained result = kv_chained::all;
  if (type != kv_io_out) result = chain<in>(design, pin, first_net, nb_of_net);
  if (type != kv_io_in) result = std::max(result, chain<out>(design, pin, first_net, nb_of_net));
  return result;
}
