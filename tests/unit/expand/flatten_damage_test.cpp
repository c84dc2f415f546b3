// Sheets that can be read but make no sense: a run gets through them, whatever they hold.
#include <random>

#include "gx/db/file/record_codec.h"
#include "gx/vext.h"
#include "tests/unit/expand/flatten_fixture.h"

namespace {

// A design that has every kind of object a run looks at.
constexpr char all_kinds[] =
    "symbol ram\n pin D 0,0 IXO bits 0:3\n pin A 0,4 IN\n prop CLASS=M\n"
    "symbol cell\n pin D 0,0 IXO bits 0:3\n pin A 0,4 IN\n pin B 8,0 OUT\n"
    "sheet cell\n port D p 0,0 bits 0:3\n port A p 0,20\n port B p 0,30\n"
    " part U ram 4,0 TIMIND=3\n part R r 9,20\n part Q e 20,9 W=(2*DRIVE)\n"
    " global VDD g 30,30\n  pinprop INIT=1F\n"
    " bus D 0:3 INIT=0\n  wire D U.D\n  bit 2 Q.1\n  wire U.D Q.1\n"
    " net A\n  wire A R.1 U.A\n net B INIT=XZ\n  wire B R.2\n net V\n  wire Q.2 30,30\n"
    "sheet top\n part X cell 4,0 DRIVE=2\n part Y cell 16,20 DRIVE=3\n global GND g 40,40\n"
    " bus BUS 0:7\n  wire X.D Y.D\n  bit 4 Y.D\n net CLK\n  wire X.A Y.A 40,40\n"
    " net N\n  wire X.B 20,3\n net M\n  wire Y.B 32,23\n";

class damage {
 public:
  explicit damage(unsigned seed) : random_(seed) {}

  // Changes a few fields of a sheet to values of the right kind, sound or not.
  void strike(gx_file_gene_recf_t& file) {
    for (auto left = below(12); left >= 0; --left) strike_one(file);
  }

 private:
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  std::int16_t number() {
    constexpr std::int16_t odd[] = {0, 1, 2, 3, 7, -1, 900, 32767, -32768};
    return odd[below(static_cast<int>(std::size(odd)))];
  }
  // An object of the type, 0 now and then.
  gx_object_id_t some(const gx_file_gene_recf_t& file, gx_type type) {
    if (below(8) == 0) return 0;
    gx_object_id_t id = 0;
    for (int tries = 0; tries < 200 && id == 0; ++tries) {
      const auto* object =
          file.ptr_to_ar_objindex[static_cast<std::size_t>(below(file.object_id_max))];
      if (object->object_type == type) id = object->object_id;
    }
    return id;
  }
  void strike_one(gx_file_gene_recf_t& file) {
    auto* object = file.ptr_to_ar_objindex[static_cast<std::size_t>(below(file.object_id_max))];
    switch (object->object_type) {
      case gx_type::pinpropfam: {
        auto& pin = reinterpret_cast<gx_object_pinpropfam_rec_t&>(*object);
        if (below(2) == 0) pin.net = some(file, gx_type::net);
        pin.pin_start = number(), pin.pin_end = number(), pin.pin_net_start = number();
        break;
      }
      case gx_type::net: {
        auto& net = reinterpret_cast<gx_object_net_rec_t&>(*object);
        net.is_bus = below(2) == 0;
        net.bus_start = number();
        net.bus_end = static_cast<std::int16_t>(net.bus_start % 100 + below(40) - 10);
        break;
      }
      case gx_type::vertex_2d:
        reinterpret_cast<gx_object_vertex_rec_t&>(*object).net = some(file, gx_type::net);
        break;
      case gx_type::segment:
        reinterpret_cast<gx_object_segment_rec_t&>(*object).vertex1 =
            some(file, below(2) == 0 ? gx_type::vertex_2d : gx_type::pinpropfam);
        break;
      case gx_type::instance:
        reinterpret_cast<gx_object_instance_rec_t&>(*object).symbol = some(file, gx_type::symbol);
        break;
      case gx_type::symbol: {
        constexpr std::string_view paths[] = {"",
                                              "/",
                                              "cell/symbol.gx_1",
                                              "top/symbol.gx_1",
                                              "r/symbol.gx_",
                                              "symbol.gx_1",
                                              "nowhere/s.gx_9"};
        auto& symbol = reinterpret_cast<gx_object_symbol_rec_t&>(*object);
        symbol.path = gx_string(paths[below(static_cast<int>(std::size(paths)))]);
        symbol.instance = some(file, gx_type::instance);
        break;
      }
      case gx_type::property_2d: {
        constexpr std::string_view names[] = {"CLASS", "INST",   "NET",    "PIN", "PINTYPE",
                                              "INIT",  "GLOBAL", "TIMIND", "W",   ""};
        constexpr std::string_view values[] = {"",       "G",      "PORTIO", "R",   "VDD", "A",
                                               "D[0:3]", "(DRIVE", "(1/0)",  "120", "IO",  "1"};
        auto& property = reinterpret_cast<gx_object_property_rec_t&>(*object);
        property.name = gx_name(names[below(static_cast<int>(std::size(names)))]);
        property.nvalue = gx_value(values[below(static_cast<int>(std::size(values)))]);
        break;
      }
      default:
        break;
    }
  }
  std::mt19937 random_;
};

TEST_F(FlattenTest, SheetsThatMakeNoSenseAreGotThrough) {
  int flattened = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE(seed);
    auto files = build(all_kinds);
    damage harm(seed);
    for (auto& file : files) {
      if (file.base == "sheet") harm.strike(*file.file);
    }
    const auto& top = file_of(files, "top", "sheet");
    if (gx_decode_file(gx_encode_file(top), "top").code != gx_code::all_is_ok) continue;
    write(files);
    kv_sext.primitive.count = kv_sext.property_instance.count = 0;
    kv_sext.property_pin.count = kv_sext.property_net.count = 0;
    declare({"PRIMI CLASS", "PROP INS R W", "PROP PIN S PINTYPE", "PROP NET I INIT"});
    gx_vext.num_file_open = 0;
    open_top();
    session.run("RUN");
    ++flattened;
    // Every chain can be walked to its end.
    EXPECT_EQ(nets().size(), static_cast<std::size_t>(kv_sext.nets.count));
    for (std::int32_t i = 1; i <= kv_sext.pins.count; ++i) {
      EXPECT_LE(kv_ptrto_pin_rec(i).net_ind, kv_sext.nets.count);
    }
  }
  EXPECT_GT(flattened, 20);
}

}  // namespace
