#include "deck/deck_file.h"

#include <array>

#include "deck/letters.h"

namespace {

// The blocks of text in a cell.
struct block_t {
  std::string_view word;
  std::string dk_cell_t::*text;
};
constexpr auto blocks = std::to_array<block_t>({{"header", &dk_cell_t::header},
                                                {"statements", &dk_cell_t::statements},
                                                {"end", &dk_cell_t::end},
                                                {"definition", &dk_cell_t::definition}});

// The first word of the text, which loses it and the blank after it.
std::string_view take_word(std::string_view& text) {
  const auto end = text.find(' ');
  const auto word = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return word;
}

void put_lines(std::string& out, std::string_view lines) {
  while (!lines.empty()) out.append(": ").append(dk_take_line(lines)).append("\n");
}

}  // namespace

std::string dk_write(const dk_cells_t& cells) {
  std::string out =
      "# Lines of a deck for SPICE, which kvspice writes: see docs/deck.md.\n"
      "deck 1\n";
  const auto put = [&](std::string_view word, std::string_view rest) {
    out.append(word).append(rest.empty() ? "" : " ").append(rest).append("\n");
  };
  for (const auto& [directory, cell] : cells) {
    if (cell.is_empty()) continue;
    out += "\n";
    put("cell", directory);
    if (!cell.subcircuit.empty()) put("subcircuit", cell.subcircuit);
    if (cell.is_part) put("part", {});
    for (const auto& [name, value] : cell.parameters) put("parameter", name + " " + value);
    for (const auto& [name, direction] : cell.ports) put("port", name + " " + direction);
    for (const auto& instance : cell.instances) {
      put("instance", instance.name);
      put_lines(out, instance.lines);
    }
    for (const auto& block : blocks) {
      if ((cell.*block.text).empty()) continue;
      put(block.word, {});
      put_lines(out, cell.*block.text);
    }
  }
  return out;
}

std::string dk_read(std::string_view text, dk_cells_t& cells) {
  dk_cell_t* cell = nullptr;
  std::string* lines = nullptr;
  bool begun = false;
  for (int number = 1; !text.empty(); ++number) {
    auto line = dk_take_line(text);
    while (line.ends_with('\r')) line.remove_suffix(1);
    const auto wrong = [&](const std::string& what) {
      return "line " + std::to_string(number) + ": " + what;
    };
    if (line.starts_with(':')) {
      if (lines == nullptr) return wrong("a line of a deck that belongs to nothing");
      line.remove_prefix(line.starts_with(": ") ? 2 : 1);
      lines->append(line).append("\n");
      continue;
    }
    if (line.starts_with('#') || line.find_first_not_of(" \t") == std::string_view::npos) continue;
    const auto word = take_word(line);
    lines = nullptr;
    if (word == "deck") {
      if (line != "1") return wrong("\"" + std::string(line) + "\" is no version that is known");
      begun = true;
    } else if (!begun) {
      return wrong("\"deck 1\" is not the first word");
    } else if (word == "cell") {
      cell = &cells[std::string(line)];
    } else if (cell == nullptr) {
      return wrong("\"" + std::string(word) + "\" before the first cell");
    } else if (word == "subcircuit") {
      cell->subcircuit = line;
    } else if (word == "part") {
      cell->is_part = true;
    } else if (word == "parameter" || word == "port") {
      const auto name = take_word(line);
      (word == "port" ? cell->ports : cell->parameters).emplace_back(name, line);
    } else if (word == "instance") {
      lines = &cell->instances.emplace_back(dk_instance_t{std::string(line), {}}).lines;
    } else {
      for (const auto& block : blocks)
        if (word == block.word) lines = &(cell->*block.text);
      if (lines == nullptr) return wrong("\"" + std::string(word) + "\" is no word of a deck");
    }
  }
  return {};
}
