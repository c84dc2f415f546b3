// The design file byte by byte, and what it looks like when writing fails on the way.
#include "expand/output/design_file.h"

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "tests/support/case_file.h"
#include "tests/unit/expand/store_fixture.h"

namespace {

using DesignFileTest = StoreFixture;

// "01 02" and the like; ".." is a zero byte, "*7" seven of them, "'ab'" are characters.
std::string bytes(const std::string& told) {
  std::string result;
  std::istringstream words(told);
  for (std::string word; words >> word;) {
    if (word.starts_with("'")) {
      result += word.substr(1, word.size() - 2);
    } else if (word.starts_with("*")) {
      result.append(std::stoul(word.substr(1)), '\0');
    } else {
      std::ranges::replace(word, '.', '0');
      for (std::size_t i = 0; i < word.size(); i += 2)
        result += static_cast<char>(std::stoi(word.substr(i, 2), nullptr, 16));
    }
  }
  return result;
}

TEST_F(DesignFileTest, TheImageByteByByte) {
  fill_store();
  // what an entry held behind its text must not show
  kv_sext.property_pin.entry[0].name.char_[100] = 'x';
  ASSERT_TRUE(write_design());
  const std::string image = read_file(design_path);
  std::size_t at = 0;
  for (const auto& line : split_lines(sections_of_case("design/image.txt").at("design_kv"))) {
    const std::string part = bytes(line.substr(line.find(": ") + 1));
    EXPECT_EQ(image.substr(at, part.size()), part) << line << " at " << at;
    at += part.size();
  }
  EXPECT_EQ(image.size(), at);
}

TEST_F(DesignFileTest, AShorterImageCutsALongerOne) {
  for (std::int32_t i = 0; i < 1000; ++i) kv_save_string("abc");  // one full block exactly
  kv_sext.general_info.nbof_string = 1000;
  kv_sext.general_info.nbof_char = kv_sext.chars.count;
  ASSERT_TRUE(write_design());
  EXPECT_EQ(read_file(design_path).size(), 68U + 3003U + 12000U);
  kv_empty_store();
  fill_store();
  ASSERT_TRUE(write_design());
  const std::string image = read_file(design_path);
  EXPECT_EQ(image.size(), 68U + 4 * 416 + 14 + 4 * 12 + 4 * 16 + 44 + 240 + 320 + 28 + 40 + 40);
  ASSERT_TRUE(write_design());
  EXPECT_EQ(read_file(design_path), image);
}

TEST_F(DesignFileTest, AFailedWriteLeavesNoValidHeader) {
  fill_store();
  ASSERT_TRUE(write_design());
  // The next image does not fit below the size limit of this process.
  for (int i = 0; i < 3000; ++i) kv_save_string("abcdef");
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit old_limit;
  ::getrlimit(RLIMIT_FSIZE, &old_limit);
  const rlimit limit{10000, old_limit.rlim_max};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  EXPECT_FALSE(write_design());
  ::setrlimit(RLIMIT_FSIZE, &old_limit);
  EXPECT_EQ(read_file(design_path).substr(0, 68), std::string(68, '\0'));

  ::close(kv_sext.designfile);
  kv_sext.designfile = ::open("/dev/full", O_WRONLY);
  EXPECT_FALSE(write_design());
  ::close(kv_sext.designfile);
  kv_sext.designfile = -1;
  EXPECT_FALSE(write_design());
}

TEST_F(DesignFileTest, ASessionKeepsTheImageUntilItsRunAndSeesOthers) {
  fill_store();
  ASSERT_TRUE(write_design());
  const std::string image = read_file(design_path);
  // Another process opens the file only to look, then holds it for reading.
  int ready[2], done[2];
  ASSERT_EQ(::pipe(ready) + ::pipe(done), 0);
  const pid_t other = ::fork();
  if (other == 0) {
    std::string why;
    const int fd = kv_open_design_file(design_path, why);
    ::flock(fd, LOCK_SH);
    char c = 'x';
    (void)!::write(ready[1], &c, 1);
    (void)!::read(done[0], &c, 1);
    std::_Exit(0);
  }
  char c;
  ASSERT_EQ(::read(ready[0], &c, 1), 1);
  EXPECT_EQ(read_file(design_path), image);
  EXPECT_EQ(kv_other_session(kv_sext.designfile), other);
  EXPECT_FALSE(write_design());  // the reader does not let go
  EXPECT_EQ(read_file(design_path), image);
  ASSERT_EQ(::write(done[1], &c, 1), 1);
  int status;
  ::waitpid(other, &status, 0);
  EXPECT_EQ(kv_other_session(kv_sext.designfile), 0);
  EXPECT_TRUE(write_design());
  for (const int fd : {ready[0], ready[1], done[0], done[1]}) ::close(fd);
}

TEST_F(DesignFileTest, WithoutItsListingTheImageEndsBehindTheHeader) {
  fill_store();
  ASSERT_TRUE(write_design());
  const std::string first = read_file(design_path).substr(0, 68);
  std::filesystem::create_directory(dir + "/kivo_data");
  EXPECT_FALSE(write_design(true));
  EXPECT_EQ(read_file(design_path), first);
}

}  // namespace
