// The iterators: nets, instances, macros, their pins and those of a net. While nothing is loaded
// the design is empty, so that all of them are at their end.
#include "kvi/state.h"

namespace {

template <typename Record>
void first_record(std::int32_t* index) {
  *index = kvi_loaded().holds<Record>(1) ? 1 : 0;
}

template <typename Record>
void next_record(std::int32_t* index) {
  const auto& design = kvi_loaded();
  *index = design.holds<Record>(*index) && *index < design.count<Record>() ? *index + 1 : 0;
}

// The pins of an instance or macro follow each other.
template <typename Owner>
void first_of_owner(std::int32_t owner_ind, std::int32_t* pin) {
  const auto& design = kvi_loaded();
  *pin = 0;
  if (!design.holds<Owner>(owner_ind)) return;
  const auto owner = design.get<Owner>(owner_ind);
  if (owner.nb_of_pin > 0) *pin = owner.first_pin_ind;
}

template <typename Owner, typename Pin>
void next_of_owner(std::int32_t Pin::*owner_ind, std::int32_t* pin) {
  const auto& design = kvi_loaded();
  const std::int32_t current = *pin;
  *pin = 0;
  if (!design.holds<Pin>(current)) return;
  const std::int32_t owner_of_pin = design.get<Pin>(current).*owner_ind;
  if (!design.holds<Owner>(owner_of_pin)) return;
  const auto owner = design.get<Owner>(owner_of_pin);
  const std::int32_t last = owner.first_pin_ind + owner.nb_of_pin - 1;
  if (current >= owner.first_pin_ind && current < last) *pin = current + 1;
}

// Answers `pin`, or the end of the chain when it is none.
void answer_pin(std::int32_t pin, std::int32_t* index, std::int16_t* pin_type) {
  const auto& design = kvi_loaded();
  const bool holds = design.holds<kv_pin_record_t>(pin);
  *index = holds ? pin : 0;
  *pin_type = holds ? design.get<kv_pin_record_t>(pin).io_type : std::int16_t{0};
}

void first_of_net(std::int32_t net, std::int32_t kv_net_record_t::*first, std::int32_t* pin,
                  std::int16_t* pin_type) {
  const auto& design = kvi_loaded();
  const bool holds = design.holds<kv_net_record_t>(net);
  answer_pin(holds ? design.get<kv_net_record_t>(net).*first : 0, pin, pin_type);
}

void next_of_net(std::int32_t kv_pin_record_t::*next, std::int32_t* pin, std::int16_t* pin_type) {
  const auto& design = kvi_loaded();
  std::int32_t following = 0;
  if (design.holds<kv_pin_record_t>(*pin)) {
    const auto record = design.get<kv_pin_record_t>(*pin);
    if (design.holds<kv_net_record_t>(record.net_ind)) following = record.*next;
  }
  answer_pin(following, pin, pin_type);
}

}  // namespace

void kvi_get_first_net(std::int32_t* net) { first_record<kv_net_record_t>(net); }
void kvi_get_next_net(std::int32_t* net) { next_record<kv_net_record_t>(net); }
void kvi_get_first_instance(std::int32_t* instance) { first_record<kv_inst_record_t>(instance); }
void kvi_get_next_instance(std::int32_t* instance) { next_record<kv_inst_record_t>(instance); }

void kvi_get_first_macro(std::int32_t* macro) { first_record<kv_macro_record_t>(macro); }
void kvi_get_next_macro(std::int32_t* macro) { next_record<kv_macro_record_t>(macro); }

void kvi_get_first_pin_of_instance(std::int32_t instance, std::int32_t* pin) {
  first_of_owner<kv_inst_record_t>(instance, pin);
}
void kvi_get_next_pin_of_instance(std::int32_t* pin) {
  next_of_owner<kv_inst_record_t>(&kv_pin_record_t::instance_ind, pin);
}
void kvi_get_first_pin_of_macro(std::int32_t macro, std::int32_t* pin) {
  first_of_owner<kv_macro_record_t>(macro, pin);
}
void kvi_get_next_pin_of_macro(std::int32_t* pin) {
  next_of_owner<kv_macro_record_t>(&kv_pinm_record_t::macro_ind, pin);
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
