// Loads any bytes as a design file and, when they are taken, asks everything a client can ask.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "kvi/load.h"
#include "kvi/state.h"

namespace {

void load(const std::uint8_t* data, std::size_t size) {
  static const int fd = ::memfd_create("design", 0);
  if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, data, size, 0) != static_cast<ssize_t>(size)) {
    std::abort();
  }
  kvi_state.design.load(fd);
}

void ask_about_pins(std::int32_t net, kvi_pin_record_t** record) {
  std::int32_t pin;
  std::int16_t type;
  for (kvi_get_first_pin_in_of_net(net, &pin, &type); pin != 0;
       kvi_get_next_pin_in_of_net(&pin, &type)) {
    kvi_get_pin_record(pin, record);
  }
  for (kvi_get_first_pin_out_of_net(net, &pin, &type); pin != 0;
       kvi_get_next_pin_out_of_net(&pin, &type)) {
    kvi_get_pin_record(pin, record);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  load(data, size);
  kvi_net_record_t* net_record = nullptr;
  kvi_instance_record_t* instance_record = nullptr;
  kvi_pin_record_t* pin_record = nullptr;
  kvi_prop_record_t* property;
  std::int32_t net, instance, pin;
  for (kvi_get_first_net(&net); net != 0; kvi_get_next_net(&net)) {
    kvi_get_net_record(net, &net_record);
    kvi_find_net_property(net_record, 3, "NET", &property);
    ask_about_pins(net, &pin_record);
  }
  for (kvi_get_first_instance(&instance); instance != 0; kvi_get_next_instance(&instance)) {
    kvi_get_instance_record(instance, &instance_record);
    for (kvi_get_first_pin_of_instance(instance, &pin); pin != 0;
         kvi_get_next_pin_of_instance(&pin)) {
      kvi_get_pin_record(pin, &pin_record);
    }
  }
  kvi_free_net_record(&net_record);
  kvi_free_instance_record(&instance_record);
  kvi_free_pin_record(&pin_record);
  return 0;
}
