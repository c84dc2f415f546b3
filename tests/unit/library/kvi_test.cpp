// The design-file library: what a client sees of a design, and how it refuses what is none.
#include "kvi/kvi.h"

#include <sys/file.h>
#include <sys/mman.h>

#include <cstring>
#include <functional>
#include <vector>

#include "kvi/load.h"
#include "kvi/state.h"
#include "tests/unit/expand/store_fixture.h"

namespace {

std::string_view view(const kvi_string_record_t& string) {
  return {string.charp, static_cast<std::size_t>(string.len)};
}

class KviTest : public StoreFixture {
 protected:
  void SetUp() override {
    StoreFixture::SetUp();
    std::filesystem::current_path(dir);  // where the trace goes
  }
  void TearDown() override {
    kvi_close_dfi();
    std::filesystem::current_path("/");
    StoreFixture::TearDown();
  }

  std::int32_t load(std::string_view name = "design_kv") const {
    std::int32_t status = -1;
    kvi_init_dfi(static_cast<std::int32_t>(dir.size()), dir.data(),
                 static_cast<std::int32_t>(name.size()), name.data(), &status);
    return status;
  }
  // Writes the store, changed by `change`, and loads it.
  std::int32_t load_store(const std::function<void()>& change = [] {}) {
    kv_sext.general_info = {};
    for (auto& list : {&kv_sext.property_instance, &kv_sext.property_pin, &kv_sext.property_net}) {
      list->count = 0;
    }
    kv_empty_store();
    fill_store();
    change();
    EXPECT_TRUE(write_design());
    return load();
  }
  // Loads an image from memory.
  static kvi_load_result load_image(std::string_view image) {
    const int fd = ::memfd_create("image", 0);
    EXPECT_EQ(::write(fd, image.data(), image.size()), static_cast<ssize_t>(image.size()));
    const kvi_load_result result = kvi_state.design.load(fd);
    ::close(fd);
    return result;
  }

  using step_t = std::function<void(std::int32_t*)>;
  static std::vector<int> walk(const step_t& first, const step_t& next) {
    std::vector<int> met;
    std::int32_t i = -7;
    for (first(&i); i != 0; next(&i)) met.push_back(i);
    return met;
  }
  static std::vector<int> pins_in(std::int32_t net) {
    std::int16_t type;
    return walk([&](auto* pin) { kvi_get_first_pin_in_of_net(net, pin, &type); },
                [&](auto* pin) { kvi_get_next_pin_in_of_net(pin, &type); });
  }
  static std::vector<int> pins_of_instance(std::int32_t instance) {
    return walk([&](auto* pin) { kvi_get_first_pin_of_instance(instance, pin); },
                [](auto* pin) { kvi_get_next_pin_of_instance(pin); });
  }
  // Everything a client can ask about what is loaded; returns how many nets and pins it met.
  static std::size_t ask_everything() {
    std::size_t met = 0;
    kvi_net_record_t* net = nullptr;
    kvi_instance_record_t* instance = nullptr;
    kvi_pin_record_t* pin = nullptr;
    for (int n : walk(kvi_get_first_net, kvi_get_next_net)) {
      kvi_get_net_record(n, &net);
      for (int p : pins_in(n)) kvi_get_pin_record(p, &pin), ++met;
      ++met;
    }
    for (int n : walk(kvi_get_first_instance, kvi_get_next_instance)) {
      kvi_get_instance_record(n, &instance);
      for (int p : pins_of_instance(n)) kvi_get_pin_record(p, &pin), ++met;
    }
    kvi_free_net_record(&net);
    kvi_free_instance_record(&instance);
    kvi_free_pin_record(&pin);
    return met;
  }
};

TEST_F(KviTest, IteratesAndFillsRecords) {
  ASSERT_EQ(load_store(), KVI_OK);
  EXPECT_EQ(kvi_get_nb_of_errors(), 3);
  EXPECT_EQ(kvi_get_nb_of_warnings(), 4);
  EXPECT_EQ(kvi_get_time_step(), 0.5F);
  EXPECT_EQ(walk(kvi_get_first_net, kvi_get_next_net), (std::vector{1, 2}));
  EXPECT_EQ(walk(kvi_get_first_instance, kvi_get_next_instance), (std::vector{1}));
  EXPECT_EQ(pins_of_instance(1), (std::vector{1, 2}));
  EXPECT_EQ(pins_in(2), (std::vector{1, 2}));
  EXPECT_TRUE(pins_in(1).empty());
  std::int32_t out = 0;
  std::int16_t type = 0;
  kvi_get_first_pin_out_of_net(2, &out, &type);
  EXPECT_EQ(out, 2);
  EXPECT_EQ(type, 3);
  kvi_get_next_pin_out_of_net(&out, &type);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(type, 0);

  kvi_instance_record_t* instance = nullptr;
  kvi_get_instance_record(1, &instance);
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(view(instance->name), "U1");  // its INST property
  EXPECT_EQ(view(instance->sim_path), "/U1");
  EXPECT_EQ(view(instance->file_path), "/d/sheet");
  EXPECT_EQ(instance->timing_index, 120);
  EXPECT_EQ(instance->primitive, 1);
  kvi_prop_record_t* size = nullptr;
  EXPECT_FALSE(kvi_find_instance_property(instance, 4, "size", &size));
  ASSERT_TRUE(kvi_find_instance_property(instance, 4, "SIZE", &size));
  EXPECT_EQ(size->vtype, KVI_INTEGER);
  EXPECT_EQ(size->value.ivalue[2], 300);
  EXPECT_EQ(view(instance->prop[0]->value.svalue), "U1");

  kvi_net_record_t* net = nullptr;
  kvi_get_net_record(1, &net);
  EXPECT_EQ(view(net->name), "B");
  EXPECT_EQ(std::vector({net->net_bus_start, net->net_bus_end}), (std::vector<std::int16_t>{7, 7}));
  EXPECT_EQ(std::vector({net->netind_start, net->first_sub_net, net->bus, net->father_net}),
            (std::vector{2, 2, 0, 0}));
  EXPECT_EQ(net->prop[0]->value.rvalue[1], -2.5F);
  kvi_net_record_t* const same = net;
  kvi_get_net_record(2, &net);
  EXPECT_EQ(net, same);
  EXPECT_EQ(std::vector({net->netind_start, net->first_sub_net, net->bus, net->father_net}),
            (std::vector{0, 0, 1, 1}));
  EXPECT_EQ(net->net_bus_end, 0);
  EXPECT_EQ(net->nb_of_property, 0);
  kvi_get_net_record(3, &net);
  EXPECT_EQ(net->self_id, 2);  // out of range: as it was

  kvi_pin_record_t* pin = nullptr;
  kvi_get_pin_record(1, &pin);
  EXPECT_EQ(view(pin->name), "N_1");  // without a PIN property
  EXPECT_EQ(pin->prop[0]->vtype, KVI_TIME);
  EXPECT_EQ(pin->prop[0]->value.tvalue[2], 65536);
  EXPECT_EQ(std::vector({pin->pin_start, pin->pin_end, pin->pin_net_start}),
            (std::vector<std::int16_t>{3, 4, -1}));
  EXPECT_EQ(std::vector({pin->instance, pin->net}), (std::vector{1, 2}));
  kvi_free_net_record(&net);
  kvi_free_instance_record(&instance);
  kvi_free_pin_record(&pin);
}

TEST_F(KviTest, NamesOfNetsWithoutName) {
  ASSERT_EQ(load_store([] {
              kv_sext.nets[1].name = 0;
              kv_sext.nets[2].name = 0;
              kv_sext.nets[2].nb_of_property = 1;
              kv_sext.nets[2].first_prop = kv_save_prop_str("CLK");
              kv_sext.property_net.entry[0].name = gx_string("Net");
              kv_sext.general_info.nbof_prop++;
              kv_sext.general_info.nbof_string++;
              kv_sext.general_info.nbof_char += 3;
            }),
            KVI_OK);
  kvi_net_record_t* net = nullptr;
  kvi_get_net_record(1, &net);
  EXPECT_EQ(view(net->name), "N_1");
  kvi_get_net_record(2, &net);
  EXPECT_EQ(view(net->name), "CLK");
  EXPECT_EQ(view(net->prop[0]->value.svalue), "CLK");  // was a real number in the same record
  kvi_free_net_record(&net);
}

TEST_F(KviTest, RefusesWhatIsNoWholeDesign) {
  ASSERT_EQ(load_store(), KVI_OK);
  EXPECT_EQ(ask_everything(), 6U);
  const std::string image = read_file(design_path);
  for (std::size_t size = 0; size < image.size(); ++size) {
    ASSERT_EQ(load_image(image.substr(0, size)), kvi_load_result::too_short) << size;
    ASSERT_EQ(ask_everything(), 0U);
  }
  EXPECT_EQ(load_image(image + "older bytes"), kvi_load_result::loaded);
  EXPECT_EQ(ask_everything(), 6U);
  // a run that was stopped while writing leaves zeros for a header
  EXPECT_EQ(load_image(std::string(68, '\0') + image.substr(68)), kvi_load_result::damaged);
  EXPECT_EQ(ask_everything(), 0U);
  // a flipped bit is found or does no harm
  for (std::size_t at = 0; at < image.size(); ++at) {
    std::string flipped = image;
    flipped[at] = static_cast<char>(flipped[at] ^ (at % 2 == 0 ? 0x80 : 0x02));
    load_image(flipped);
    ask_everything();
  }
  const std::function<void()> damages[] = {
      [] { kv_sext.pins[2].next_pin_in_ind = 1; },  // chains in a circle
      [] { kv_sext.pins[1].next_pin_out_ind = 1; },
      [] { kv_sext.nets[2].next_sub_net = 2; },
      [] { kv_sext.net_childs[1].next_child = 1; },
      [] { kv_sext.insts[1].nb_of_pin = 3; },
      [] { kv_sext.insts[1].first_pin_ind = 0; },
      [] { kv_sext.nets[1].nb_of_property = 2; },
      [] { kv_sext.nets[1].first_prop = 5; },
      [] { kv_sext.nets[2].name = -1; },
      [] { kv_sext.strings[1].index = 13; },
      [] { kv_sext.strings[1].len = -1; },
      [] { kv_sext.props[1].prop_type = 4; },
      [] { kv_sext.props[1].valuec = 5; },
      [] { kv_sext.general_info.nbof_net = -1; },
      [] { kv_sext.general_info.software_revision = 2; },
  };
  int n = 0;
  for (const auto& damage : damages) EXPECT_EQ(load_store(damage), KVI_DAMAGED) << n++;
  EXPECT_EQ(load_store(), KVI_OK);
  std::filesystem::resize_file(design_path, image.size() - 1);
  EXPECT_EQ(load(), KVI_REFUSED);
  EXPECT_EQ(kvi_open_design(kvi_state.design, "no/such").message,
            "no/such: No such file or directory");
}

TEST_F(KviTest, FindsObjectsAndTheirPlaces) {
  EXPECT_EQ(kvi_find(KVI_INSTANCE, 3, "/U1"), 0);  // of no design
  ASSERT_EQ(load_store([] {
              kv_sext.insts[1].sim_path = kv_save_string("/X/U");
              kv_sext.macros[1].sim_path = kv_save_string("/X");
              kv_sext.nets[2].sim_path = kv_save_string("/X/N");
              kv_sext.net_childs[1].sim_path = kv_save_string("/X/Y/C");
              kv_sext.nets[1].sim_path = kv_save_string("/B");
              kv_sext.general_info.nbof_string = kv_sext.strings.count;
              kv_sext.general_info.nbof_char = kv_sext.chars.count;
            }),
            KVI_OK);
  EXPECT_EQ(kvi_find(KVI_INSTANCE, 4, "/X/U"), 1);
  EXPECT_EQ(kvi_find(KVI_INSTANCE, 4, "/X/N"), 0);
  EXPECT_EQ(kvi_find(KVI_MACRO, 1, "x"), 1);
  EXPECT_EQ(kvi_find(KVI_NET, 4, "/x/n"), 2);
  EXPECT_EQ(kvi_find(KVI_NET, 6, "/X/Y/C"), 2);
  EXPECT_EQ(kvi_find(KVI_NET, 6, "/X/Y/D") + kvi_find(7, 4, "/X/U"), 0);
  const auto place = [](int kind, int index) {
    kvi_place_t at{};
    if (kvi_get_place(kind, index, &at) == 0) return std::string("none");
    return std::to_string(at.object_id) + " " + std::to_string(at.macro) + " " +
           std::string(at.sheet, static_cast<std::size_t>(at.sheet_len));
  };
  EXPECT_EQ(place(KVI_INSTANCE, 1), "258 1 /d/sheet");
  EXPECT_EQ(place(KVI_PIN, 2), "12 1 /d/sheet");
  EXPECT_EQ(place(KVI_NET, 2), "21 1 /d/sheet");
  EXPECT_EQ(place(KVI_NET, 1), "20 0 /d/sheet");
  EXPECT_EQ(place(KVI_NET, 3), "none");
}

TEST_F(KviTest, SaysWhoIsWritingAndWhichNamesAreTooLong) {
  const int file = ::memfd_create("image", 0);
  const int writer = ::open(("/proc/self/fd/" + std::to_string(file)).c_str(), O_RDWR);
  ASSERT_EQ(::flock(writer, LOCK_EX), 0);
  const auto loaded = kvi_load_design(kvi_state.design, file, "image");
  EXPECT_EQ(loaded.result, kvi_load_result::locked);
  EXPECT_EQ(loaded.message, "image: is being written by " +
                                split_lines(read_file("/proc/self/comm"))[0] + " (process " +
                                std::to_string(::getpid()) + ")");
  ::close(writer);
  ::close(file);

  const auto exits_with = [](int code) { return ::testing::ExitedWithCode(code); };
  const std::string name(199, 'x');
  EXPECT_EXIT(kvi_init_dfi(189, name.data(), 9, "design_kv", nullptr), exits_with(19), "");
  EXPECT_EXIT(kvi_init_dfi(190, name.data(), 9, "design_kv", nullptr), exits_with(69), "");
}

}  // namespace
