// The face of an expanded design: what its readers ask of one in memory, and of its file.
#include "netlist/netlist.h"

#include <sstream>

#include "kvi/load.h"
#include "netlist/hierarchy.h"
#include "netlist/path_index.h"
#include "netlist/simulator_names.h"
#include "tests/support/told_netlist.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

// A design of nets alone, with their paths and kinds; texts and indexes as a run saves them.
struct nets_t {
  kv_design_t design;

  nets_t() { kv_limit_design(design, 1000); }
  std::int32_t add(std::string_view path, std::int16_t kind = kv_kind_local,
                   std::string_view name = "") {
    const std::int32_t index = design.nets.append(1);
    design.nets[index].sim_path = kv_save_string(design, path);
    design.nets[index].net_kind = kind;
    if (!name.empty()) design.nets[index].name = kv_save_string(design, name);
    return index;
  }
  // A bus of the range and its members after it.
  std::int32_t add_bus(int start, int end) {
    const std::int32_t bus = add("/D");
    const int width = std::abs(end - start) + 1;
    auto& record = design.nets[bus];
    record.net_type = kv_net_bus;
    record.net_bus_start = static_cast<std::int16_t>(start);
    record.net_bus_end = static_cast<std::int16_t>(end);
    record.netind_start = bus + 1;
    for (int i = 0; i < width; ++i) {
      const std::int32_t member = add("/D_" + std::to_string(i));
      design.nets[member].bus = bus;
      design.nets[member].posinbus = static_cast<std::int16_t>(i);
    }
    return bus;
  }
};

TEST(Netlist, APinMeetsTheBitsOfItsBus) {
  nets_t nets;
  nets.add("/A");                                   // 1
  const std::int32_t rising = nets.add_bus(4, 7);   // 2, members 3..6
  const std::int32_t falling = nets.add_bus(7, 4);  // 7, members 8..11
  const kv_netlist_t netlist(nets.design);
  const struct {
    std::int32_t net;
    int start, end, net_start;
    std::vector<std::int32_t> met;
    std::int32_t first, after;  // in a row
  } cases[] = {
      {0, 0, 0, 0, {0}, 0, 0},
      {0, 0, 2, 0, {0, 0, 0}, 0, 0},
      {1, 0, 0, 0, {1}, 1, 2},
      {rising, 0, 0, 5, {4}, 4, 5},
      {rising, 0, 1, 6, {5, 6}, 5, 7},
      {rising, 9, 8, 6, {5, 6}, 5, 7},
      {rising, 0, 2, 6, {5, 6, 0}, 5, 7},  // the bus ends before
      {rising, 0, 1, 3, {0, 3}, 3, 4},     // and begins behind
      {rising, 0, 1, 9, {0, 0}, 7, 7},
      {falling, 0, 0, 7, {8}, 8, 9},
      {falling, 0, 2, 6, {9, 10, 11}, 9, 12},
      {falling, 0, 1, 4, {11, 0}, 11, 12},
  };
  for (const auto& c : cases) {
    kv_pin_record_t& pin = nets.design.pins[nets.design.pins.append(1)];
    pin.net_ind = c.net;
    pin.pin_start = static_cast<std::int16_t>(c.start);
    pin.pin_end = static_cast<std::int16_t>(c.end);
    pin.pin_net_start = static_cast<std::int16_t>(c.net_start);
    const kv_bits_t bits = netlist.bits({kv_named::pin, nets.design.pins.count});
    std::vector<std::int32_t> met;
    for (std::int32_t bit = 0; bit < bits.count; ++bit) met.push_back(bits.net(bit));
    const std::string of = std::to_string(nets.design.pins.count);
    EXPECT_EQ(met, c.met) << of;
    EXPECT_EQ(bits.met_first(), c.first) << of;
    EXPECT_EQ(bits.met_after(), c.after) << of;
  }
  EXPECT_EQ(netlist.bit(6), 7);
  EXPECT_EQ(netlist.bit(11), 4);
}

TEST(Netlist, NamesForASimulatorDiffer) {
  const struct {
    std::vector<std::string_view> paths;
    std::vector<std::string_view> names;
  } cases[] = {
      {{"/N", "/X1/N3", "/GROUND"}, {"N", "1:N3", "0"}},
      {{"/A/br"}, {"A:br"}},  // nothing would be left of the block's name
      {{"/A/br", "/B/br", "/br"}, {"A:br", "B:br", "br"}},
      {{"/X1/N", "/X2/N", "/U1/n"}, {"X1:N", "2:N", "U1:n"}},
      // Three short names are the same, and two of the whole paths.
      {{"/XA:B/N", "/XA/B/N", "/UA/B/N"}, {"XA:B:N", "XA:B:N::2", "UA:B:N"}},
      {{"/0", "/ground"}, {"0::1", "0"}},
      {{"/A:B", "/A/B", "/a/b"}, {"A:B", "A:B::2", "a:b::3"}},
  };
  for (const auto& c : cases) {
    nets_t nets;
    for (const auto path : c.paths) nets.add(path);
    const kv_simulator_names_t names{kv_netlist_t(nets.design)};
    for (std::size_t i = 0; i < c.paths.size(); ++i)
      EXPECT_EQ(names.of(static_cast<std::int32_t>(i) + 1), c.names[i]) << c.paths[0] << i;
  }
  // The nets of a global are one node, named by the one at the top.
  nets_t nets;
  nets.add("/X1/Vdd", kv_kind_global, "Vdd");
  nets.add("/X2/GND", kv_kind_global, "gnd");
  nets.add("/VDD", kv_kind_global, "VDD");
  nets.add("/X3/GND", kv_kind_global, "GND");
  const kv_simulator_names_t names{kv_netlist_t(nets.design)};
  EXPECT_EQ(names.of(1), "VDD");
  EXPECT_EQ(names.of(3), "VDD");
  EXPECT_EQ(names.of(2), names.of(4));
  EXPECT_EQ(names.node(4), 2);
}

TEST(Netlist, BlocksHoldWhatIsDrawnInThem) {
  kv_design_t design;
  kv_limit_design(design, 1000);
  const auto add = [&](auto& array, std::string_view path) {
    array[array.append(1)].sim_path = kv_save_string(design, path);
  };
  for (const auto path : {"/X", "/X/Y/Z", "/X/Y/Z/Q", "/W"}) add(design.macros, path);
  for (const auto path : {"/R", "/X/R", "/X/Y/R", "/X/Y/Z/R", "/XY/R", "/X/Y/Z/Q/R", "/W/R"})
    add(design.insts, path);
  const kv_hierarchy_t blocks{kv_netlist_t(design)};
  std::ostringstream told;
  blocks.walk([&](std::int32_t macro, int level) {
    told << level << ' ' << (macro == 0 ? "top" : blocks.name({kv_named::macro, macro})) << ':';
    for (const std::int32_t inst : blocks.instances(macro))
      told << ' ' << blocks.name({kv_named::inst, inst});
    told << '\n';
  });
  EXPECT_EQ(told.str(), "0 top: R XY/R\n1 X: R Y/R\n2 Y/Z: R\n3 Q: R\n1 W: R\n");
  EXPECT_EQ(blocks.parent({kv_named::macro, 3}), 2);
  EXPECT_EQ(blocks.block_of("/X/Y/N"), 1);
}

// All that a netlist answers, and what is found under each path.
template <typename Design>
std::string described(const kv_netlist_t<Design>& netlist) {
  std::ostringstream text;
  const kv_path_index_t<Design> paths(netlist);
  for (const kv_named what : {kv_named::inst, kv_named::macro, kv_named::net, kv_named::net_child,
                              kv_named::pin, kv_named::pinm}) {
    std::int32_t index = 0;
    for (const auto& line : told_objects(netlist, what, true)) {
      const std::string key = kv_path_key(netlist.path({what, ++index}));
      text << line;
      for (const kv_object_t found : paths.find({&key, 1}, SIZE_MAX)) text << " =" << found.index;
      if (what == kv_named::net_child) text << " net " << paths.net_of_child(index);
      if (what == kv_named::net)
        for (const std::int32_t pin : netlist.pins(index)) text << " pin " << pin;
      text << '\n';
    }
  }
  return text.str();
}

class NetlistOfRunTest : public FlattenTest {};

TEST_F(NetlistOfRunTest, TheFileAnswersAsTheDesignInMemory) {
  write(
      build("symbol two\n pin D 0,0 IXO bits 0:1\n prop CLASS=U SIZE=3\n"
            "symbol cell\n pin A 0,0 IN bits 0:1\n pin B 0,4 OUT\n prop W=2.5\n"
            "sheet cell\n port A p 0,0 bits 4:5\n port B p 0,9\n part U two 2,0\n"
            " part R r 9,0\n global VDD g 20,20\n"
            " bus A 4:5\n  wire A U.D R.1\n  bit 5 R.1\n net\n  wire B R.2\n"
            "sheet top\n part X cell 2,0\n part Y cell 20,0\n part E e 40,0\n"
            " global VDD g 60,20\n bus D 0:3 INIT=1\n  wire X.A Y.A\n  bit 2 Y.A\n"
            " net N INIT=0\n  wire X.B E.1\n net\n  wire E.2 60,20\n"));
  declare({"PRIMI CLASS", "PROP INS S CLASS", "PROP INS I SIZE", "PROP INS R W", "PROP PIN S PIN",
           "PROP NET S NET"});
  open_top();
  answers();
  ASSERT_GT(kv_sext.insts.count, 4);
  const kv_memory_netlist_t in_memory(kv_sext);
  kvi_design_t design;
  ASSERT_EQ(kvi_open_design(design, "design_kv").message, "");
  EXPECT_EQ(described(kvi_netlist_t(design)), described(in_memory));
  // Every pin of a net is on it, each once; what is on both chains, too.
  for (std::int32_t net = 1; net <= in_memory.count(kv_named::net); ++net) {
    std::vector<std::int32_t> met, expected;
    for (const std::int32_t pin : in_memory.pins(net)) met.push_back(pin);
    for (std::int32_t pin = 1; pin <= in_memory.count(kv_named::pin); ++pin) {
      const kv_bits_t bits = in_memory.bits({kv_named::pin, pin});
      if (net >= bits.met_first() && net < bits.met_after()) expected.push_back(pin);
    }
    std::ranges::sort(met);
    EXPECT_EQ(met, expected) << net;
  }
  const auto value = [&](kv_object_t of, int place) {
    return in_memory.value(in_memory.property(of, place), 1);
  };
  EXPECT_EQ(value({kv_named::inst, 1}, 1), 3);     // SIZE
  EXPECT_EQ(value({kv_named::macro, 1}, 2), 2.5);  // W
  EXPECT_EQ(in_memory.path({kv_named::net, 10'000}), "");
  EXPECT_EQ(in_memory.bits({kv_named::pin, 0}).net(0), 0);
}

}  // namespace
