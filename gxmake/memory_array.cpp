// The text of the memory array, sheet by sheet.
#include "gxmake/memory_array.h"

#include <algorithm>
#include <vector>

// Parts stand a little scattered, so that no straight wire runs over a pin that it does not join.
namespace {

constexpr int blocks_of_bank = 64;

std::string n(int number) { return std::to_string(number); }

constexpr char devices[] = R"(
symbol mos
  line 0,0 1,0
  line 1,-1 1,1
  polyline 2,-2 2,-1 1.4,-1 1.4,1 2,1 2,2
  pin D 2,-2 IXO
  pin G 0,0 IN
  pin S 2,2 IXO
  pin B 3,0 IN
  prop CLASS=M W=1
symbol cap
  line 0,0 0,1
  line -1,1 1,1
  line -1,2 1,2
  line 0,2 0,3
  pin 1 0,0 IXO
  pin 2 0,3 IXO
  prop CLASS=C VALUE=1f
symbol portio
  polyline 0,0 1,-0.5 3,-0.5 3,0.5 1,0.5 0,0
  pin P 0,0 IXO
  prop CLASS=PORTIO
symbol vdd
  line 0,0 0,-1
  pin P 0,0 IXO
  prop CLASS=G GLOBAL=VDD
symbol gnd
  line 0,0 0,1
  pin P 0,0 IXO
  prop CLASS=G GLOBAL=GND
)";

std::string cell(const std::string& name) {
  return "symbol " + name + R"(
  rect 1,0 5,8
  pin WL 0,1 IN
  pin BL 0,3 IXO
  pin BLB 0,5 IXO
  pin CK 0,7 IN
sheet )" +
         name + R"(
  page 60,40
  port WL portio 52,4
  port BL portio 52,8
  port BLB portio 52,12
  port CK portio 52,16
  global VDD vdd 4,2
  global GND gnd 4,36
  part MP1 mos 9,9
  part MN1 mos 11,23
  part MP2 mos 20,11
  part MN2 mos 22,27
  part MN3 mos 30,8
  part MN4 mos 41,14
  part C1 cap 31,28
  part C2 cap 40,24
  net Q
    wire MP1.S MN1.D
    wire MN1.D 14,22 MP2.G
    wire MP2.G MN2.G
    wire MN2.G C1.1
    wire C1.1 MN3.S
  net QB
    wire MP2.S MN2.D
    wire MN2.D MP1.G
    wire MP1.G MN1.G
    wire MN2.D C2.1
    wire C2.1 MN4.S
  net WL
    wire WL MN4.G
    wire MN4.G MN3.G
  net BL
    wire BL MN3.D
  net BLB
    wire BLB MN4.D
  net CK
    wire CK C2.2
  net VDD
    wire VDD MP1.D
    wire MP1.D MP1.B
    wire MP1.D MP2.D
    wire MP2.D MP2.B
  net GND
    wire GND MN1.S
    wire MN1.S MN1.B
    wire MN1.S MN2.S
    wire MN2.S MN2.B
    wire MN2.S C1.2
    wire MN2.B MN3.B
    wire MN3.B MN4.B
)";
}

// Ports of a bus or of one bit, and the wire from the port to each of the pins it names.
std::string port(const std::string& name, const std::string& bits, int y) {
  return "  port " + name + " portio 90," + n(y) + (bits.empty() ? "" : " bits " + bits) + "\n";
}

std::string row(int number, int variants) {
  std::string text = "symbol row" + n(number) + R"(
  rect 1,0 9,8
  pin WL 0,1 IN
  pin BL 0,3 IXO bits 0:7
  pin BLB 0,5 IXO bits 0:7
  pin CK 0,7 IN
sheet row)" + n(number) +
                     "\n  page 100,40\n";
  text += port("WL", "", 4) + port("BL", "0:7", 8) + port("BLB", "0:7", 12) + port("CK", "", 16);
  for (int i = 0; i < 8; ++i)
    text += "  part C" + n(i) + " bitcell" + n((i + number) % variants) + " " + n(8 + 9 * i) + "," +
            n(18 + i * i % 7) + "\n";
  for (const char* pin : {"WL", "CK"}) {
    text += std::string("  net ") + pin + "\n    wire " + pin;
    for (int i = 7; i >= 0; --i) text += " C" + n(i) + "." + pin;
    text += "\n";
  }
  for (const char* pin : {"BL", "BLB"}) {
    text += std::string("  bus ") + pin + " 0:7\n    wire " + pin;
    for (int i = 7; i >= 0; --i) text += " C" + n(i) + "." + pin;
    text += "\n";
    for (int i = 0; i < 8; ++i) text += "    bit " + n(i) + " C" + n(i) + "." + pin + "\n";
  }
  return text;
}

// Eight rows, twelve transistors and twelve capacitors around them.
std::string block(int rows) {
  std::string text = R"(
symbol block
  rect 1,0 9,8
  pin WL 0,1 IN bits 0:7
  pin BL 0,3 IXO bits 0:7
  pin BLB 0,5 IXO bits 0:7
  pin CK 0,7 IN
sheet block
  page 100,80
)";
  text += port("WL", "0:7", 4) + port("BL", "0:7", 8) + port("BLB", "0:7", 12) + port("CK", "", 16);
  text += "  global VDD vdd 3,1\n  global GND gnd 5,77\n";
  for (int i = 0; i < 8; ++i)
    text += "  part R" + n(i) + " row" + n(i % rows) + " " + n(6 + 10 * i) + "," +
            n(22 + i * i % 7) + "\n";
  for (int i = 0; i < 12; ++i)
    text += "  part MP" + n(i) + " mos " + n(6 + 7 * i) + "," + n(42 + i * i * 3 % 11) +
            "\n  part CP" + n(i) + " cap " + n(7 + 7 * i) + "," + n(58 + i * i % 11) + "\n";
  const auto all_rows = [](const std::string& pin) {
    std::string stops;
    for (int i = 7; i >= 0; --i) stops += " R" + n(i) + "." + pin;
    return stops + "\n";
  };
  text += "  bus WL 0:7\n    wire WL" + all_rows("WL");
  for (int i = 0; i < 8; ++i) text += "    bit " + n(i) + " R" + n(i) + ".WL\n";
  for (const char* pin : {"BL", "BLB"}) {
    text += std::string("  bus ") + pin + " 0:7\n    wire " + pin + all_rows(pin);
    for (int i = *pin == 'B' && pin[2] ? 1 : 0; i < 12; i += 2)
      text += "    wire R0." + std::string(pin) + " MP" + n(i) + ".D width 1\n    bit " + n(i % 8) +
              " MP" + n(i) + ".D\n";
  }
  text += "  net CK\n    wire CK" + all_rows("CK");
  for (int i = 0; i < 12; ++i) text += "    wire R0.CK MP" + n(i) + ".G\n";
  text += "  net VDD\n";
  for (int i = 0; i < 12; ++i)
    text += "    wire VDD MP" + n(i) + ".S\n    wire MP" + n(i) + ".S MP" + n(i) +
            ".B\n    wire MP" + n(i) + ".S CP" + n(i) + ".1\n";
  text += "  net GND\n";
  for (int i = 0; i < 12; ++i) text += "    wire GND CP" + n(i) + ".2\n";
  return text;
}

// Banks and blocks beside each other, joined by what goes through all of them.
class columns_t {
 public:
  columns_t(int banks, int blocks) {
    for (int i = 0; i < banks; ++i) add("K" + n(i), "bank");
    for (int i = 0; i < blocks; ++i) {
      word_lines_ += "  bus WL" + n(i) + " 0:7\n    wire B" + n(i) + ".WL " + n(x() + 2) + ",4\n";
      add("B" + n(i), "block");
    }
  }
  std::string page(int least, int height) const {
    const int columns = std::max(static_cast<int>(names_.size()), least);
    return "  page " + n(20 + 14 * columns) + "," + n(height) + "\n";
  }
  std::string wires(const std::string& pin) const {
    std::string text;
    for (std::size_t i = 0; i + 1 < names_.size(); ++i)
      text += "    wire " + names_[i] + "." + pin + " " + names_[i + 1] + "." + pin + "\n";
    return text;
  }
  const std::string& first() const { return names_.front(); }
  const std::string& parts() const { return parts_; }
  const std::string& word_lines() const { return word_lines_; }  // a block's end on its sheet

 private:
  int x() const { return 8 + 14 * static_cast<int>(names_.size()); }
  void add(const std::string& name, const std::string& symbol) {
    parts_ += "  part " + name + " " + symbol + " " + n(x()) + ",10\n";
    names_.push_back(name);
  }

  std::vector<std::string> names_;
  std::string parts_, word_lines_;
};

std::string bank() {
  const columns_t columns(0, blocks_of_bank);
  std::string text = R"(
symbol bank
  rect 1,0 9,8
  pin BL 0,3 IXO bits 0:7
  pin BLB 0,5 IXO bits 0:7
  pin CK 0,7 IN
sheet bank
)";
  text += columns.page(0, 40);
  text +=
      "  port BL portio 3,22 bits 0:7\n  port BLB portio 3,26 bits 0:7\n  port CK portio 3,30\n";
  text += columns.parts() + columns.word_lines();
  for (const std::string pin : {"BL", "BLB", "CK"}) {
    text += pin == "CK" ? "  net CK\n" : "  bus " + pin + " 0:7\n";
    text += "    wire " + pin + " " + columns.first() + "." + pin + "\n" + columns.wires(pin);
  }
  return text;
}

std::string top(int banks, int blocks) {
  const columns_t columns(banks, blocks);
  const std::string first = "    wire " + columns.first();
  std::string text = "sheet array\n" + columns.page(10, 80);
  text += "  global VDD vdd 3,1\n  global GND gnd 5,77\n" + columns.parts();
  for (int i = 0; i < 8; ++i)
    text += "  part MD" + n(i) + " mos " + n(8 + 14 * i) + "," + n(29 + i * i * 3 % 11) + "\n";
  for (int i = 0; i < 10; ++i) text += "  part CD" + n(i) + " cap " + n(8 + 14 * i) + ",50\n";
  text += columns.word_lines();
  text += "  bus BL 0:7\n" + columns.wires("BL");
  for (int i = 0; i < 8; ++i)
    text += first + ".BL MD" + n(i) + ".D width 1\n    bit " + n(i) + " MD" + n(i) + ".D\n";
  text += "  bus BLB 0:7\n" + first + ".BLB 6,15\n" + columns.wires("BLB");
  text += "  net CK\n" + columns.wires("CK");
  for (int i = 0; i < 8; ++i) text += first + ".CK MD" + n(i) + ".G\n";
  for (int i = 0; i < 10; ++i) text += first + ".CK CD" + n(i) + ".1\n";
  text += "  net VDD\n    wire VDD 5,3\n  net GND\n";
  for (int i = 0; i < 8; ++i)
    text += "    wire GND MD" + n(i) + ".S\n    wire MD" + n(i) + ".S MD" + n(i) + ".B\n";
  for (int i = 0; i < 10; ++i) text += "    wire GND CD" + n(i) + ".2\n";
  return text;
}

// How many whole banks a memory has; its other blocks are on the top sheet.
int banks_of(int blocks) { return blocks > blocks_of_bank ? blocks / blocks_of_bank : 0; }

}  // namespace

std::string gxm_memory_array(int blocks, int variants) {
  std::string text = devices;
  for (int i = 0; i < variants; ++i) text += cell("bitcell" + n(i));
  const int rows = variants == 1 ? 1 : 8;
  for (int i = 0; i < rows; ++i) text += row(i, variants);
  text += block(rows);
  const int banks = banks_of(blocks);
  if (banks > 0) text += bank();
  return text + top(banks, blocks - banks * blocks_of_bank);
}

gxm_array_counts_t gxm_count_memory_array(int blocks) {
  // of one cell, of a row's own, of a block's own, of a bank's own, of the top's own
  const int banks = banks_of(blocks), rows = blocks * 8, cells = rows * 8;
  const auto sum = [&](int cell, int row, int block, int bank, int top) {
    return cells * cell + rows * row + blocks * block + banks * bank + top;
  };
  return {.leaves = sum(8, 0, 24, 0, 18),
          .pins = sum(28, 0, 72, 0, 52),
          .nets = sum(2, 0, 9, 0, 21),
          .net_childs = sum(6, 4, 6, 3, 2),
          .macros = sum(1, 1, 1, 1, 0),
          .macro_pins = sum(4, 4, 4, 3, 0)};
}
