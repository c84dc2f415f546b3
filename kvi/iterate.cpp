// The iterators: nets, instances, macros, their pins and those of a net. While nothing is loaded
// the design is empty, so that all of them are at their end.
#include "kvi/state.h"

namespace {

void first_object(kv_named what, std::int32_t* index) {
  *index = kvi_loaded_netlist().count(what) > 0 ? 1 : 0;
}

void next_object(kv_named what, std::int32_t* index) {
  const kv_object_t object{what, *index};
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  *index = netlist.holds(object) && object.index < netlist.count(what) ? object.index + 1 : 0;
}

// The pins of an instance or macro follow each other.
void first_of_owner(kv_object_t owner, std::int32_t* pin) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  *pin = netlist.nb_of_pins(owner) > 0 ? netlist.pin(owner, 0).index : 0;
}

void next_of_owner(kv_named what, std::int32_t* pin) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  const kv_object_t owner = netlist.owner({what, *pin});
  const std::int32_t first = netlist.pin(owner, 0).index;
  const bool goes_on = first != 0 && *pin >= first && *pin - first < netlist.nb_of_pins(owner) - 1;
  *pin = goes_on ? *pin + 1 : 0;
}

// Answers `pin`, or the end of the chain when it is none.
void answer_pin(const kvi_netlist_t& netlist, std::int32_t pin, std::int32_t* index,
                std::int16_t* pin_type) {
  *index = netlist.holds({kv_named::pin, pin}) ? pin : 0;
  *pin_type = netlist.io_type({kv_named::pin, *index});
}

}  // namespace

void kvi_get_first_net(std::int32_t* net) { first_object(kv_named::net, net); }
void kvi_get_next_net(std::int32_t* net) { next_object(kv_named::net, net); }
void kvi_get_first_instance(std::int32_t* instance) { first_object(kv_named::inst, instance); }
void kvi_get_next_instance(std::int32_t* instance) { next_object(kv_named::inst, instance); }

void kvi_get_first_macro(std::int32_t* macro) { first_object(kv_named::macro, macro); }
void kvi_get_next_macro(std::int32_t* macro) { next_object(kv_named::macro, macro); }

void kvi_get_first_pin_of_instance(std::int32_t instance, std::int32_t* pin) {
  first_of_owner({kv_named::inst, instance}, pin);
}
void kvi_get_next_pin_of_instance(std::int32_t* pin) { next_of_owner(kv_named::pin, pin); }
void kvi_get_first_pin_of_macro(std::int32_t macro, std::int32_t* pin) {
  first_of_owner({kv_named::macro, macro}, pin);
}
void kvi_get_next_pin_of_macro(std::int32_t* pin) { next_of_owner(kv_named::pinm, pin); }

void kvi_get_first_pin_in_of_net(std::int32_t net, std::int32_t* pin, std::int16_t* pin_type) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  answer_pin(netlist, netlist.first_pin_in(net), pin, pin_type);
}
void kvi_get_next_pin_in_of_net(std::int32_t* pin, std::int16_t* pin_type) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  answer_pin(netlist, netlist.next_pin_in(*pin), pin, pin_type);
}
void kvi_get_first_pin_out_of_net(std::int32_t net, std::int32_t* pin, std::int16_t* pin_type) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  answer_pin(netlist, netlist.first_pin_out(net), pin, pin_type);
}
void kvi_get_next_pin_out_of_net(std::int32_t* pin, std::int16_t* pin_type) {
  const kvi_netlist_t netlist = kvi_loaded_netlist();
  answer_pin(netlist, netlist.next_pin_out(*pin), pin, pin_type);
}
