// Any bytes as the file "deck" of a design directory: refused with a line, or read, written and
// read again alike; its lines are taken apart and put together.
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "deck/deck_file.h"
#include "deck/line.h"
#include "deck/statements.h"

namespace {

const dk_names_t names = {
    .parameter = [](std::string_view name) -> std::optional<std::string> {
      if (name == "W") return "2*L";
      if (name == "L") return "1u";
      return std::nullopt;
    },
    .node = [](std::string_view name) { return std::string(name); },
    .device = [](std::string_view name) { return std::string(name); },
    .pin = [](int pin, std::string& out) { out += std::to_string(pin); },
};

void put_together(std::string_view lines) {
  std::string out;
  for (const auto& line : dk_compile(lines)) {
    for (const auto& piece : line.pieces) dk_put(piece, names, out);
  }
}

void take_apart(std::string_view statements) {
  for (const auto& statement : dk_statements(statements)) dk_parameters(statement.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  dk_cells_t cells, again;
  if (!dk_read({reinterpret_cast<const char*>(data), size}, cells).empty()) return 0;
  const auto written = dk_write(cells);
  if (!dk_read(written, again).empty() || dk_write(again) != written) std::abort();
  for (const auto& [directory, cell] : cells) {
    for (const auto& instance : cell.instances) put_together(instance.lines);
    for (const auto* text : {&cell.header, &cell.statements, &cell.end, &cell.definition})
      take_apart(*text);
    for (const auto& [name, value] : cell.parameters) dk_value(value, names);
  }
  return 0;
}
