// The iterators: nets, instances, the pins of an instance and of a net.
#include "kvi/state.h"

namespace {

template <typename Record>
void step(const kv_blocked_t<Record>& array, std::int32_t from, std::int32_t* index) {
  const bool more = kvi_state.store.open_file_ok && from >= 0 && from < array.count;
  *index = more ? from + 1 : 0;
}

bool loaded_pin(std::int32_t pin) {
  return kvi_state.store.open_file_ok && kvi_state.store.pins.holds(pin);
}

// Answers `pin`, or the end of the chain when it is none.
void answer_pin(std::int32_t pin, std::int32_t* index, std::int16_t* pin_type) {
  const bool holds = loaded_pin(pin);
  *index = holds ? pin : 0;
  *pin_type = holds ? kvi_state.store.pins[pin].io_type : std::int16_t{0};
}

void first_of_net(std::int32_t net, std::int32_t kv_net_record_t::*first, std::int32_t* pin,
                  std::int16_t* pin_type) {
  auto& store = kvi_state.store;
  const bool holds = store.open_file_ok && store.nets.holds(net);
  answer_pin(holds ? store.nets[net].*first : 0, pin, pin_type);
}

void next_of_net(std::int32_t kv_pin_record_t::*next, std::int32_t* pin, std::int16_t* pin_type) {
  auto& store = kvi_state.store;
  const bool holds = loaded_pin(*pin) && store.nets.holds(store.pins[*pin].net_ind);
  answer_pin(holds ? store.pins[*pin].*next : 0, pin, pin_type);
}

}  // namespace

void kvi_get_first_net(std::int32_t* net) { step(kvi_state.store.nets, 0, net); }
void kvi_get_next_net(std::int32_t* net) { step(kvi_state.store.nets, *net < 1 ? -1 : *net, net); }
void kvi_get_first_instance(std::int32_t* instance) { step(kvi_state.store.insts, 0, instance); }
void kvi_get_next_instance(std::int32_t* instance) {
  step(kvi_state.store.insts, *instance < 1 ? -1 : *instance, instance);
}

void kvi_get_first_pin_of_instance(std::int32_t instance, std::int32_t* pin) {
  auto& store = kvi_state.store;
  *pin = 0;
  if (!store.open_file_ok || !store.insts.holds(instance)) return;
  const kv_inst_record_t& inst = store.insts[instance];
  if (inst.nb_of_pin > 0) *pin = inst.first_pin_ind;
}

void kvi_get_next_pin_of_instance(std::int32_t* pin) {
  auto& store = kvi_state.store;
  const std::int32_t current = *pin;
  *pin = 0;
  if (!loaded_pin(current) || !store.insts.holds(store.pins[current].instance_ind)) return;
  const kv_inst_record_t& inst = store.insts[store.pins[current].instance_ind];
  const std::int32_t last = inst.first_pin_ind + inst.nb_of_pin - 1;
  if (current >= inst.first_pin_ind && current < last) *pin = current + 1;
}

void kvi_get_first_pin_in_of_net(std::int32_t net, std::int32_t* pin, std::int16_t* pin_type) {
  first_of_net(net, &kv_net_record_t::first_pin_in_ind, pin, pin_type);
}
void kvi_get_next_pin_in_of_net(std::int32_t* pin, std::int16_t* pin_type) {
  next_of_net(&kv_pin_record_t::next_pin_in_ind, pin, pin_type);
}
void kvi_get_first_pin_out_of_net(std::int32_t net, std::int32_t* pin, std::int16_t* pin_type) {
  first_of_net(net, &kv_net_record_t::first_pin_out_ind, pin, pin_type);
}
void kvi_get_next_pin_out_of_net(std::int32_t* pin, std::int16_t* pin_type) {
  next_of_net(&kv_pin_record_t::next_pin_out_ind, pin, pin_type);
}
