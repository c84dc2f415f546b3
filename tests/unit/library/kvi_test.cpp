// The design-file library: what a client sees of a design, and how it refuses what is none.
#include "kvi/kvi.h"

#include <sys/file.h>
#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
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

TEST_F(KviTest, MacrosTheirPinsAndAllPinsAtOnce) {
  ASSERT_EQ(load_store([] { kv_sext.pins[2].nb_of_property = 0; }), KVI_OK);
  EXPECT_EQ(walk(kvi_get_first_macro, kvi_get_next_macro), (std::vector{1}));
  EXPECT_EQ(walk([](auto* pin) { kvi_get_first_pin_of_macro(1, pin); }, kvi_get_next_pin_of_macro),
            (std::vector{1}));
  kvi_macro_record_t* macro = nullptr;
  kvi_get_macro_record(1, &macro);
  EXPECT_EQ(view(macro->name), "U1");
  EXPECT_EQ(view(macro->file_path), "/d/sheet");
  EXPECT_EQ(std::vector({macro->self_id, +macro->timing_index, +macro->nb_of_property}),
            (std::vector{1, 3, 2}));
  EXPECT_EQ(macro->prop[1]->value.ivalue[1], 2);
  kvi_get_macro_record(2, &macro);
  EXPECT_EQ(macro->self_id, 1);  // out of range: as it was
  kvi_macro_pin_record_t* pin = nullptr;
  kvi_get_macro_pin_record(1, &pin);
  EXPECT_EQ(view(pin->sim_path), "/U1");
  EXPECT_EQ(std::vector({pin->macro, pin->net, +pin->pin_start, +pin->pin_end, +pin->pin_net_start,
                         +pin->nb_of_property}),
            (std::vector{1, 2, 1, 2, 3, 1}));
  kvi_free_macro_pin_record(&pin);
  kvi_free_macro_record(&macro);
  EXPECT_EQ(pin, nullptr);
  EXPECT_EQ(macro, nullptr);

  std::int32_t len = 0;
  const char* const characters = kvi_get_characters(&len);
  EXPECT_EQ(std::string_view(characters, static_cast<std::size_t>(len)).substr(0, 11),
            "/U1/d/sheet");
  kvi_pin_row_t rows[3] = {};
  EXPECT_EQ(kvi_get_pins(0, 2, rows) + kvi_get_pins(3, 1, rows) + kvi_get_pins(1, 0, rows), 0);
  EXPECT_EQ(kvi_get_pins(2, 2, rows), 1);
  EXPECT_EQ(rows[0].pin_type, 3);
  EXPECT_EQ(kvi_get_pins(1, 3, rows), 2);
  EXPECT_EQ(
      std::vector({rows[0].instance, rows[0].net, +rows[0].pin_type, +rows[0].pin_start,
                   +rows[0].pin_end, +rows[0].pin_net_start, rows[0].path.at, rows[0].path.len}),
      (std::vector{1, 2, 1, 3, 4, -1, 0, 3}));
  EXPECT_STREQ(kvi_get_pin_property_name(0), "DELAY");
  EXPECT_EQ(kvi_get_pin_property_name(1), nullptr);
  EXPECT_EQ(kvi_get_pin_property_name(-1), nullptr);
  kvi_value_row_t values[2] = {};
  EXPECT_EQ(kvi_get_pin_values(1, 1, 2, values), 0);
  EXPECT_EQ(kvi_get_pin_values(0, 1, 2, values), 2);
  EXPECT_EQ(std::vector({values[0].vtype, values[0].whole[2], values[1].vtype, values[1].text.len}),
            (std::vector<int>{KVI_TIME, 65536, KVI_STRING, 0}));
}

TEST_F(KviTest, JsonOfADesignAndOfADifference) {
  ASSERT_EQ(load_store(), KVI_OK);
  std::int64_t len = 0;
  const std::string json = kvi_get_json(&len);
  EXPECT_EQ(json.size(), static_cast<std::size_t>(len));
  EXPECT_NE(json.find("\"/U1\""), json.npos);
  const char* const none = kvi_get_difference("no/such", design_path.c_str(), &len);
  EXPECT_EQ(none, nullptr);
  EXPECT_STREQ(kvi_difference_error(), "no/such: No such file or directory");
  EXPECT_EQ(kvi_get_difference(dir.c_str(), "", nullptr), nullptr);
  EXPECT_STREQ(kvi_difference_error(), "no file named");
  const std::string same = kvi_get_difference(dir.c_str(), design_path.c_str(), &len);
  EXPECT_EQ(same, "{\"format\": \"kivo-difference\", \"version\": 1, \"changes\": [\n]}\n");
  EXPECT_EQ(same.size(), static_cast<std::size_t>(len));
  EXPECT_STREQ(kvi_difference_error(), "");
}

TEST_F(KviTest, LoadsByPathAndSaysWhyNot) {
  std::int32_t status = 0;
  const auto load_path = [&](const char* path) {
    kvi_load(path, &status);
    return std::pair(status, std::string(kvi_load_error()));
  };
  using result_t = std::pair<std::int32_t, std::string>;
  ASSERT_EQ(load_store(), KVI_OK);
  EXPECT_EQ(load_path(""), result_t(KVI_REFUSED, "no file named"));
  EXPECT_EQ(kvi_get_nb_of_errors() + kvi_get_nb_of_pins(), 0);
  EXPECT_EQ(load_path("/"), result_t(KVI_UNREADABLE, "/: not expanded: no design_kv in it"));
  EXPECT_EQ(load_path(dir.c_str()), result_t(KVI_OK, ""));
  EXPECT_EQ(kvi_get_nb_of_warnings(), 4);
  EXPECT_EQ(kvi_get_nb_of_pins(), 2);
  std::ofstream(design_path, std::ios::in) << "written again";
  EXPECT_EQ(std::string(kvi_load_error()),
            dir + ": was written again, or cut, since it was loaded");
  EXPECT_EQ(kvi_get_nb_of_pins(), 0);
  EXPECT_EQ(load_path(dir.c_str()),
            result_t(KVI_DAMAGED, dir + "/design_kv: no design file, or damaged"));
  kvi_unload();
  EXPECT_STREQ(kvi_load_error(), "");
}

TEST_F(KviTest, StringsOfGuests) {
  kvi_string_record_t string{}, token{};
  const auto given = [&](std::string_view text) -> const kvi_string_record_t* {
    kvi_copy_string(static_cast<std::int32_t>(text.size()), text.data(), &string);
    return &string;
  };
  const std::string longest(199, 'x');
  EXPECT_EQ(view(*given(longest)), longest);
  EXPECT_EQ(view(*given(longest + "x")), longest);
  kvi_copy_const(nullptr, &string);
  EXPECT_EQ(view(string), "");
  const std::pair<float, std::string_view> numbers[] = {
      {0.0F, "0.0"},      {1.5F, "1.50"},    {-2.25F, "-2.25"}, {0.996F, "1.00"},
      {12.004F, "12.00"}, {-0.05F, "-0.05"}, {2.99995F, "3.00"}};
  for (const auto& [value, text] : numbers) {
    kvi_real_to_string(value, &string);
    EXPECT_EQ(view(string), text);
  }
  kvi_integer_to_string(-70000, &string);
  EXPECT_EQ(view(string), "-70000");

  EXPECT_EQ(kvi_equal_string(3, "abc", 3, "abd") + kvi_equal_string(2, "ab", 3, "abc") +
                kvi_equal_string(-1, "", -1, "") + kvi_equal_string(1, "a", 1, nullptr),
            0);
  EXPECT_EQ(kvi_equal_string(2, "abc", 2, "abd") + kvi_equal_string(0, nullptr, 0, "a"), 2);
  const std::string most(200, 'y'), more(201, 'y');
  EXPECT_EQ(kvi_equal_string(200, most.data(), 200, more.data()), 1);
  EXPECT_EQ(kvi_equal_string(201, more.data(), 201, more.data()), 0);
  const auto copied = [](std::int32_t len, const char* text) {
    char* const copy = kvi_writestr(len, text);
    const std::string kept = copy ? copy : "none";
    std::free(copy);
    return kept;
  };
  EXPECT_EQ(copied(2, "abc") + copied(0, "abc") + copied(-1, "abc") + copied(1, nullptr),
            "abnonenone");
  EXPECT_EQ(copied(200, most.data()), most);
  EXPECT_EQ(copied(201, more.data()).size(), 199U);

  const auto gx = [](std::string_view text) {
    kvi_gx_string_t result{static_cast<std::int32_t>(text.size()), {}};
    std::ranges::copy(text, result.chars);
    return result;
  };
  const auto ab = gx("aB");
  EXPECT_EQ(kvistring_iden_gxstring(given("Ab"), &ab), 1);
  EXPECT_EQ(kvistring_iden_gxstring(given("Abc"), &ab), 0);
  EXPECT_EQ(gxstring_equal_kvistring(&ab, given("AbC")), 1);
  EXPECT_EQ(gxstring_equal_kvistring(&ab, given("A")), 0);
  kvi_coprec_gx_kvi(&ab, &string);
  EXPECT_EQ(view(string), "aB");

  // Tokens, each with the place after it.
  const auto tokens = [&](std::string_view text) {
    given(text);
    std::string met;
    for (std::int32_t pos = 1; kvi_rd_string_t(&string, " ,", &token, &pos) != 0;)
      met += std::string(view(token)) + "@" + std::to_string(pos) + " ";
    return met;
  };
  EXPECT_EQ(tokens("a, bc"), "a@2 bc@6 ");
  EXPECT_EQ(tokens("'a b',c \"d"), "'a b'@6 c@8 \"d@11 ");
  EXPECT_EQ(tokens("x  "), "x@2 @4 ");
  EXPECT_EQ(tokens(""), "");
  std::int32_t pos = 2;
  EXPECT_EQ(kvi_findchar(given("a  b"), " ", &pos), 'b');
  EXPECT_EQ(pos, 4);
  pos = 5;
  EXPECT_EQ(kvi_findchar(&string, " ", &pos), 0);
  EXPECT_EQ(pos, 5);
  pos = 0;
  EXPECT_EQ(kvi_findchar(&string, " ", &pos), 0);
  EXPECT_EQ(kvi_get_arg(1, &string), 1);
  EXPECT_EQ(view(string), read_file("/proc/self/cmdline").c_str());
  EXPECT_EQ(kvi_get_arg(100, &string) + kvi_get_arg(0, &string), 0);
  EXPECT_EQ(view(string), "");

  ASSERT_EQ(load_store(), KVI_OK);
  kvi_gx_string_t kept{};
  kvi_copy_string_kv_gx(2, &kept);
  EXPECT_EQ(std::string_view(kept.chars), "/d/sheet");
  EXPECT_EQ(kept.len, 8);
  kvi_copy_string_kv_kvi(1, &string);
  EXPECT_EQ(view(string), "/U1");
  EXPECT_STREQ(kvi_error_name(19), "file_data_invalid");
  EXPECT_EQ(std::string(kvi_error_name(-1)) + kvi_error_name(KVI_NUMBER_OF_CODES), "");
  EXPECT_EQ(kvi_get_size_of("pin_row"), static_cast<std::int32_t>(sizeof(kvi_pin_row_t)));
  EXPECT_EQ(kvi_get_size_of("pins") + kvi_get_size_of(nullptr), 0);
  std::free(string.charp);
  std::free(token.charp);
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
      [] { kv_sext.insts[1].self = 2; },
      [] { kv_sext.pins[2].instance_ind = 0; },
      [] { kv_sext.insts[1].first_pin_ind = 2; },
      [] { kv_sext.pins[1].nb_of_property = 2; },  // more than are kept of pins
      [] { kv_sext.pins[1].net_ind = 3; },
      [] { kv_sext.nets[1].netind_start = 3; },
      [] { kv_sext.nets[1].net_bus_end = 8; },
      [] { kv_sext.nets[2].nb_pin_in = 1; },
      [] { kv_sext.nets[2].nb_pin_out = 2; },
      [] { kv_sext.nets[2].nb_of_child = 0; },
      [] { kv_sext.net_childs[1].self = 0; },
      [] { kv_sext.macros[1].nb_of_pin = 2; },
      [] { kv_sext.macros[1].nb_of_property = 3; },
      [] { kv_sext.pinms[1].macro_ind = 0; },
      [] { kv_sext.pinms[1].first_prop = 5; },
      [] { kv_sext.strings[2].index--; },  // two in one place
      [] { kv_sext.strings[1].index++; },
      [] { kv_sext.props[1].valuec = 0; },  // a text without one
      [] { kv_sext.props[1].prop_type = -1; },
      [] { kv_sext.property_net.entry[0].prop_type = gx_string(""); },
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
