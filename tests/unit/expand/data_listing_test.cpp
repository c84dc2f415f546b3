// The data listing, line by line.
#include <sys/resource.h>

#include <bit>
#include <cmath>
#include <csignal>

#include "expand/output/listing_text.h"
#include "tests/support/session_capture.h"
#include "tests/unit/expand/store_fixture.h"

namespace {

class DataListingTest : public StoreFixture {
 protected:
  std::string listing() {
    EXPECT_TRUE(write_design(true));
    return read_file(dir + "/kivo_data");
  }
  std::string head(std::string_view counts) const {
    return "#    \"" + dir + "/kivo_data\"\n#\n#  KIVO  data  \"\n#\n" +
           "#########################################\n\n" + std::string(counts) +
           "\n#########################################\n\n";
  }
};

constexpr std::string_view inst_rule = "----------------------------------------------\n \n";
constexpr std::string_view net_rule = "-----------------------------\n \n";
constexpr std::string_view star_rule = "*****************************************\n";

TEST_F(DataListingTest, EveryKindOfRecord) {
  fill_store();
  kv_sext.general_info.nbof_pinm = 11;
  const std::string stars(star_rule), dashes(inst_rule);
  const std::string at30(30, '@'), at26(26, '@'), at27(27, '@'), hashes(31, '#');
  const auto title = [&](std::string_view name) {
    return stars + stars + std::string(name) + stars;
  };
  const std::string inst_props = " nb_of_prop  : 2\n" + dashes;
  const auto inst_values = [&](const std::string& label) {
    return label + "\"INST\" prop_type  : 0\n prop_char   : \"U1\"\n" + dashes + label +
           "\"SIZE\" prop_type  : 1\n prop_int  1 : -1\n prop_int  2 : 2\n prop_int  3 : 300\n";
  };
  const std::string pin_props =
      " nb_of_prop  : 1\n" + dashes +
      " Prop PIN : name : \"DELAY\" prop_type  : 2\n prop_time  1 :      0.500\n"
      " prop_time  2 :      1.000\n prop_time  3 :  32768.000\n";
  const auto pin = [&](int index, int object_id, int io_type) {
    return at30 + "\n Pin  : " + std::to_string(index) +
           "\n object_id  : " + std::to_string(object_id) +
           "\n io_type  : " + std::to_string(io_type) +
           "\n sim_path   : \"/U1\"\n instance_ind  : 1\n net_ind       : 2\n" + pin_props;
  };
  EXPECT_EQ(listing(),
            head(" day                  :1\n month                :2\n"
                 " year                 :2024\n software_revision    :     1.000\n"
                 " nbof_prop_instance   :2\n nbof_prop_pin        :1\n"
                 " nbof_prop_net        :1\n nbof_char            :14\n"
                 " nbof_string          :4\n nbof_prop            :4\n"
                 " nbof_instance        :1\n nbof_pin             :2\n"
                 " nbof_net             :2\n nbof_net_child       :1\n"
                 " nbof_macro           :1\n nbof_pin (for macro) :11\n"
                 " time_step            :     0.500\n num_warnings         :4\n"
                 " num_errors           :3\n") +
                title(" Instance : 1\n") +
                " object_id  : 258\n sim_path   : \"/U1\"\n file_path   : \"/d/sheet\"\n" +
                inst_props + inst_values(" Prop instance : name : ") + at30 +
                "\n nb_of_pin  : 2\n" + pin(1, 11, 1) + pin(2, 12, 3) +
                //
                title(" NET : 1\n") +
                " self          : 1\n object_id     : 20\n net_type      : 3\n net_kind      : 1\n"
                " name         : \"B\"\n sim_path     : \"/U1\"\n net_bus_start : 7\n"
                " net_bus_end   : 7\n netind_start  : 2\n nb_of_prop    : 1\n" +
                std::string(net_rule) +
                " Prop NET : name : \"CAP\" prop_type  : 3\n prop_real 1 :      1.000\n"
                " prop_real 2 :     -2.500\n prop_real 3 :      0.125\n" +
                at30 + "\n nb_of_child  : 0\n" + at26 + "\n nb_pin_in  : 0\n" + at27 +
                "\n nb_pin_out  : 0\n net_bus_start : 7\n net_bus_end   : 7\n" +
                //
                title(" NET : 2\n") +
                " self          : 2\n object_id     : 21\n net_type      : 2\n net_kind      : 4\n"
                " name         : \"B\"\n sim_path     : \"/U1\"\n bus           : 1\n"
                " posinbus      : 9\n first_sub_net : 0\n father_net    : 1\n next_sub_net  : 0\n"
                " nb_of_prop    : 0\n" +
                at30 + "\n nb_of_child  : 1\n" + at30 +
                "\n  NET_CHILD : 2  1\n object_id  : 30\n net_kind   : 3\n next_child : 0\n"
                " sim_path   : \"/U1\"\n  name     : \"B\"\n" +
                at26 + "\n nb_pin_in  : 2\n" + at26 +
                "\n  PIN_IN : 2  1\n object_id  : 11\n sim_path   : \"/U1\"\n" + at26 +
                "\n  PIN_IN : 2  2\n object_id  : 12\n sim_path   : \"/U1\"\n" + at27 +
                "\n nb_pin_out  : 1\n" + at27 +
                "\n  PIN_OUT : 2  1\n object_id  : 12\n sim_path   : \"/U1\"\n"
                " net_bus_start : 17\n net_bus_end   : 0\n" +
                //
                title(" MACRO : 1\n") +
                " object_id  : 40\n sim_path   : \"/U1\"\n file_path   : \"/d/sheet\"\n" +
                inst_props + inst_values(" Prop MACRO : name : ") + hashes + "\n nb_of_pin  : 1\n" +
                hashes +
                "\n Pin  : 1\n object_id  : 50\n sim_path   : \"/U1\"\n macro_ind  : 1\n"
                " net_ind       : 2\n" +
                pin_props + "# KIVO generate DATA : END : OK  \n");
}

TEST_F(DataListingTest, RealsArePrintedAsPrintfDoes) {
  const float values[] = {0,           -0.0F,    0.0005F,   0.0015F, -0.0001F, 1.0005F,
                          2.5F / 1000, 99999.5F, -123.456F, 1e6F,    16777216, -9999999.F,
                          1e11F,       3e12F,    3.4e38F,   -1e30F,  INFINITY, -INFINITY,
                          0.0625F,     0.0635F,  1e-40F};
  std::string expected;
  const std::string path = dir + "/reals";
  std::FILE* file = std::fopen(path.c_str(), "w");
  kv_listing_text_t text(file);
  const auto add = [&](float value) {
    char line[80];
    std::snprintf(line, sizeof line, "v%10.3f\n", static_cast<double>(value));
    expected += line;
    text.real("v", value);
  };
  for (float value : values) add(value);
  for (std::uint32_t bits = 1; bits < 0x7f800000; bits += 104729 * 53) {  // over all magnitudes
    add(std::bit_cast<float>(bits));
    add(std::bit_cast<float>(bits | 0x80000000));
  }
  for (int i = 0; i < 3000; ++i) add(static_cast<float>(i) / 2048);  // ties among them
  EXPECT_TRUE(text.finish());
  std::fclose(file);
  EXPECT_EQ(read_file(path), expected);
}

TEST_F(DataListingTest, AListingThatCannotBeWrittenIsTold) {
  fill_store();
  const auto image = 68U + 4 * 416 + 14 + 4 * 12 + 4 * 16 + 44 + 240 + 320 + 28 + 40 + 40;
  // a disk that is full behind the image
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit old_limit;
  ::getrlimit(RLIMIT_FSIZE, &old_limit);
  const rlimit limit{image, old_limit.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_FALSE(write_design(true));
  ::setrlimit(RLIMIT_FSIZE, &old_limit);
  EXPECT_EQ(read_file(design_path).size(), image);
  // a link to something else is left alone
  const std::string path = dir + "/kivo_data", precious = dir + "/precious";
  std::ofstream(precious) << "old";
  std::filesystem::remove(path);
  std::filesystem::create_symlink(precious, path);
  session_capture session;
  EXPECT_FALSE(write_design(true));
  EXPECT_EQ(read_file(precious), "old");
  EXPECT_EQ(session.take(),
            (std::vector<std::string>{"# RUN ", "# !! Error : Impossible to Open the file : ",
                                      "# \"" + path + "\"", "# !! : is a symbolic link"}));
}

}  // namespace
