// Any bytes as a file of xschem: they are refused with a place, or they are records whose
// attributes, labels and pictures can be taken apart.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "import/drawing/netlist_text.h"
#include "import/xschem/attributes.h"
#include "import/xschem/labels.h"
#include "import/xschem/picture.h"
#include "import/xschem/records.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  gxm_messages_t messages;
  try {
    const auto file = gxi_xschem_read_records(text, {"fuzz", 0}, messages);
    const auto say = [](std::string_view name) { return std::string(name); };
    gxm_shape_t drawn;
    for (const auto& shape : file.shapes) gxi_xschem_shape(shape, drawn);
    for (const bool fixed : {false, true}) gxi_xschem_shown(file, fixed, say);
    gxi_netlist_devices(file.spice);
    for (const auto& component : file.components) {
      const gxi_xschem_attributes_t attributes(component.attributes);
      for (const auto& [name, value] : attributes.all())
        if (gxi_xschem_bits(value).empty()) std::abort();
    }
  } catch (const std::runtime_error& refused) {
    if (std::string_view(refused.what()).rfind("fuzz:", 0) != 0) std::abort();
  }
  return 0;
}
