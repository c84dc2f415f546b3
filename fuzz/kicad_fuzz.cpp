// Any bytes as a sheet of KiCad and as its project: they are refused with a place, or they are a
// sheet whose nets can be found and whose symbols can be drawn.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "import/kicad/nets.h"
#include "import/kicad/signs.h"
#include "import/kicad/variables.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto variables = gxi_kicad_read_variables(text);
  const auto value_of = [&](std::string_view name) -> std::optional<std::string> {
    const auto found = variables.find(name);
    return found == variables.end() ? std::nullopt : std::optional(found->second);
  };
  try {
    const auto file = gxi_kicad_read_records(text, "fuzz");
    gxi_kicad_sheet_t sheet{.file = &file, .name = "fuzz"};
    for (const auto& [name, members] : file.aliases) sheet.aliases.emplace(name, members);
    for (const auto& label : file.labels)
      sheet.labels.push_back(gxi_kicad_substitute(label.text.text, value_of));
    for (const auto& placed : file.placed) {
      auto& pins = sheet.pins.emplace_back();
      sheet.joined.emplace_back();
      const auto symbol = file.symbols.find(placed.symbol);
      if (symbol == file.symbols.end()) continue;
      for (const auto* const pin : gxi_kicad_pins(*symbol->second, placed.unit, placed.style))
        pins.push_back({.pin = pin, .at = pin->at, .power = pin->name, .everywhere = pin->hidden});
      gxi_kicad_sign_key(
          gxi_kicad_part_sign(*symbol->second, placed.unit, placed.style, placed.alternates));
    }
    for (const auto& block : file.blocks) {
      auto& pins = sheet.block_pins.emplace_back();
      for (const auto& pin : block.pins) pins.push_back(pin.text.text);
      sheet.faces.push_back(nullptr);
      gxi_kicad_block_sign(block, pins, sheet.aliases);
    }
    const auto joined = gxi_kicad_join(sheet);
    for (const auto net : joined.of_wire)
      if (net < 0 || net >= static_cast<int>(joined.nets.size())) std::abort();
  } catch (const std::runtime_error& refused) {
    if (std::string_view(refused.what()).rfind("fuzz:", 0) != 0) std::abort();
  }
  return 0;
}
