// The data listing, line by line.
#include <sys/resource.h>

#include <bit>
#include <cmath>
#include <csignal>

#include "expand/output/listing_text.h"
#include "tests/support/case_file.h"
#include "tests/support/session_capture.h"
#include "tests/unit/expand/store_fixture.h"

namespace {

class DataListingTest : public StoreFixture {
 protected:
  std::string listing() {
    EXPECT_TRUE(write_design(true));
    std::string text = read_file(dir + "/kivo_data");
    return text.replace(text.find(dir), dir.size(), "HERE");
  }
};

TEST_F(DataListingTest, EveryKindOfRecord) {
  fill_store();
  kv_sext.general_info.nbof_pinm = 11;
  EXPECT_EQ(listing(), sections_of_case("design/listing.txt").at("kivo_data"));
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
