// Link files, versions, slots and saving, with real files in a directory of the test's own.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <sstream>

#include "gx/db/file/file_slots.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/object_list.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/objects_of.h"
#include "gx/edit/file_save.h"
#include "gx/vext.h"
#include "tests/support/case_file.h"
#include "tests/support/db_builder.h"
#include "tests/support/fatal_stop.h"
#include "tests/support/scratch_directory.h"
#include "tests/support/session_case.h"

namespace {

class db_files : public testing::Test {
 protected:
  void SetUp() override {
    gx_reset_state();
    gx_vext.init_done = true;
  }
  void TearDown() override { gx_reset_state(); }

  std::string dir() const { return scratch.path().string(); }
  void put_version(const gx_builder& built, std::string_view base, int version) const {
    const auto link = std::string(base) + ".gx";
    const auto value = std::string("_").append(std::to_string(version));
    scratch.write(link, value + "        \n");
    scratch.write(link + value, built.bytes());
  }
  const gx_file_io_rec_t& slot(int index) const {
    return gx_vext.filear[static_cast<std::size_t>(index)];
  }

  scratch_directory scratch;
};

// Answers what is made of a link or a path.
class link_session {
 public:
  explicit link_session(std::string_view) {}
  lines_t answer(const std::string& line) const {
    const auto blank = line.find(' ');
    const std::string verb = line.substr(0, blank);
    std::string text = line.substr(blank + 1);
    std::ranges::replace(text, '|', '\n');
    std::ostringstream told;
    gx_vext.num_errors = 0;
    if (verb == "link") {
      scratch_.write("top.gx", text);
      const auto names = gx_file_get_file_version(scratch_.path().string(), "top");
      told << gx_view(names.file_pathname).substr(scratch_.path().string().size())
           << (names.found ? " found" : "");
      names.valid ? told << " version " << names.version : told << " invalid";
    } else if (verb == "path") {
      const auto split = gx_get_path_n0version(text);
      told << '"' << gx_view(split.directory) << "\" \"" << gx_view(split.name) << '"';
      split.error ? told << " error" : told << " version " << split.version;
    } else {
      const auto colon = text.find(':');
      scratch_.write("Sym.gx", text.substr(0, colon));
      const auto link = gx_check_gx_link(scratch_.path().string() + text.substr(colon + 1));
      told << (gx_view(link.directory) == scratch_.path().string() ? "there" : "elsewhere")
           << (link.link_found ? " found" : "") << (link.current ? " current" : "");
    }
    told << ", " << gx_vext.num_errors << " errors";
    return {told.str()};
  }

 private:
  scratch_directory scratch_;
};

TEST_F(db_files, links_and_paths_name_versions) {
  expect_sessions<link_session>("design/links.txt");
  // A link file that is there and cannot be read is not missing.
  std::filesystem::create_symlink("loop.gx", scratch.file("loop.gx"));
  const auto loop = gx_file_get_file_version(dir(), "loop");
  EXPECT_TRUE(loop.found && !loop.valid);
  EXPECT_EQ(loop.why, dir() + "/loop.gx: cannot be read: Too many levels of symbolic links");
  const auto none = gx_file_get_file_version(dir(), "other");
  EXPECT_FALSE(none.found);
  EXPECT_EQ(gx_view(none.link_value), "_1");
  EXPECT_EQ(gx_view(gx_file_new_file_version("/d", "top", 3).file_pathname), "/d/top.gx_4");
  EXPECT_FALSE(gx_file_get_file_version(std::string(190, 'd'), "top").valid);
}

TEST_F(db_files, opening_and_reopening_slots) {
  put_version(small_sheet(), "top", 3);
  gx_builder other;
  other.add(gx_type::main);
  put_version(other, "sub", 1);

  ASSERT_EQ(gx_file_open(dir(), "top"), 1);
  const auto* first = &gx_ptrto_gene_file_buf(1);
  EXPECT_EQ(first->object_id_max, small_sheet().file.object_id_max);
  EXPECT_EQ(first->file_index, 1);
  EXPECT_EQ(slot(1).version, 3);
  EXPECT_TRUE(slot(1).version_found && slot(1).already_open_ok);

  EXPECT_TRUE(gx_file_reopen(1, dir(), "top"));  // the same file stays
  EXPECT_EQ(&gx_ptrto_gene_file_buf(1), first);
  EXPECT_TRUE(gx_file_reopen(1, dir(), "sub"));
  EXPECT_EQ(gx_ptrto_gene_file_buf(1).object_id_max, 1);

  std::string why;
  EXPECT_FALSE(gx_file_try_reopen(1, dir(), "none", why));
  EXPECT_EQ(why, dir() + "/none.gx: no such file");
  scratch.write("bad.gx", "_7\n");
  EXPECT_FALSE(gx_file_try_reopen(1, dir(), "bad", why));
  EXPECT_EQ(why, dir() + "/bad.gx_7: cannot be read: No such file or directory");
  scratch.write("bad.gx_7", "short");
  EXPECT_EQ(gx_file_try_open(dir(), "bad", why), 0);
  EXPECT_EQ(why, dir() + "/bad.gx_7: the file ends early");
  scratch.write("bad.gx", "_seven\n");
  EXPECT_FALSE(gx_file_try_reopen(1, dir(), "bad", why));
  EXPECT_TRUE(why.starts_with(dir() + "/bad.gx: ")) << why;
  EXPECT_EQ(gx_view(slot(1).filetype), "sub");
  EXPECT_EQ(gx_vext.num_file_open, 1);

  EXPECT_FALSE(gx_file_reopen(1, dir(), "none"));  // the slot is empty now
  EXPECT_EQ(gx_ptrto_gene_file_buf(1).primary_object, 0);
  EXPECT_TRUE(gx_file_reopen(1, dir(), "sub"));
  EXPECT_EQ(gx_ptrto_gene_file_buf(1).primary_object, 1);
  EXPECT_EQ(gx_file_try_open(dir(), "new", why), 2);
  EXPECT_EQ(gx_vext.cur_file, 2);
  EXPECT_EQ(gx_ptrto_gene_file_buf(2).object_id_max, 0);
  gx_file_close(1);
  EXPECT_EQ(gx_ptrto_gene_file_buf(1).object_id_max, 1);
  EXPECT_EQ(gx_file_create_bye(dir() + "/made"), 3);
  EXPECT_EQ(gx_view(slot(3).file_pathname), dir() + "/made");
  EXPECT_EQ(gx_ptrto_gene_file_buf(3).object_id_max, 0);
  EXPECT_TRUE(std::filesystem::exists(scratch.file("made")));
}

TEST_F(db_files, files_that_cannot_be_used_stop_with_their_lines) {
  const auto open = [&] { gx_file_open(dir(), "top"); };
  const auto path = dir() + "/top.gx_1";
  scratch.write("top.gx", "_1\n");
  expect_stop(open, gx_code::file_open_invalid,
              "!!! file_open  file not opened : \"" + path + "\" ");

  auto bytes = small_sheet().bytes();
  bytes[3] = '\x01';
  scratch.write("top.gx_1", bytes);
  expect_stop(open, gx_code::file_open_invalid,
              " !! soft_rev error in open file in = '" + path +
                  "'\n!! Software Revision Error:2.000000.instead of:2.000000. in open file = '" +
                  path + "'\n");
  bytes = small_sheet().bytes();
  bytes[38 + 13] = 33;
  scratch.write("top.gx_1", bytes);
  expect_stop(open, gx_code::object_structure_invalid,
              " Error :  readrectype : got unexpected  type=33 .1,58. \n");
  bytes[38 + 13] = 1;
  bytes[38 + 15] = 33;
  scratch.write("top.gx_1", bytes);
  expect_stop(
      [&] {
        gx_vext.num_file_open = 1;
        gx_file_reopen(1, dir(), "top");
      },
      gx_code::file_close_invalid,
      " gx_file_open : object invalid: R_11:  obj_id:1\tstatus:33  deleted:32 \n");
  scratch.write("top.gx", "_one\n");
  expect_stop(open, gx_code::file_data_invalid, dir() + "/top.gx: the link file");
  expect_stop(
      [&] {
        for (int i = 0; i < 33; ++i) gx_file_open(dir(), "new");
      },
      gx_code::too_many_files, " ## error in open file = '" + dir());
  expect_stop(
      [&] {
        gx_vext.init_done = false;
        gx_file_open(dir(), "new");
      },
      gx_code::init_not_done);
  expect_stop([] { gx_file_close(0, false); }, gx_code::file_data_invalid, "sfile_index : 0");
}

TEST_F(db_files, a_new_file_is_saved_as_version_1_and_then_as_2) {
  testing::internal::CaptureStdout();
  const auto index = gx_file_open(dir(), "top");
  auto& file = gx_ptrto_gene_file_buf(index);
  auto& main_object = gx_new_object(file, gx_type::main);
  main_object.object_id = file.object_id_max = file.primary_object = 1;
  main_object.object_type = gx_type::main;
  file.ptr_to_ar_objindex.push_back(&main_object);
  file.dot_width = 77;
  gx_vext.check_data_done = 1;
  gx_vext.num_errors = 5;
  gx_file_close(index, true);
  EXPECT_EQ(scratch.read("top.gx"), "_1        \n");
  const auto saved = gx_load_file(dir() + "/top.gx_1");
  ASSERT_EQ(saved.message, "");
  EXPECT_EQ(saved.file->dot_width, 77);
  EXPECT_EQ(saved.file->check_data_done, 1);
  EXPECT_EQ(saved.file->num_errors, 5);
  EXPECT_GT(saved.file->year, 2000);

  const auto first = scratch.read("top.gx_1");
  const auto again = gx_file_open(dir(), "top");
  gx_file_close(again, true);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), " -- saving file :\"" + dir() +
                                                        "/top.gx_1\" --\n -- saving file :\"" +
                                                        dir() + "/top.gx_2\" --\n");
  EXPECT_EQ(scratch.read("top.gx"), "_2        \n");
  EXPECT_EQ(scratch.read("top.gx_1"), first);
  EXPECT_EQ(gx_load_file(dir() + "/top.gx_2").message, "");
  EXPECT_EQ(gx_vext.num_file_open, 4);  // two sources, two targets
}

TEST_F(db_files, a_save_drops_deleted_objects_and_renumbers_every_reference) {
  // The second instance with its properties and pins goes, and the segment with its other end.
  auto sheet = small_sheet();
  const auto& f = sheet.file;
  sheet.add_record<gx_object_grid_rec_t>(f.page_obj_id).step_point = 100;
  const int first = nth_object(f, gx_type::instance), second = nth_object(f, gx_type::instance, 2);
  const int vertex = nth_object(f, gx_type::vertex_2d, 2);
  const int segment = nth_object(f, gx_type::segment, 2);
  put_version(sheet, "top", 3);
  const auto index = gx_file_open(dir(), "top");
  auto& open = gx_ptrto_gene_file_buf(index);
  for (const int id : {second, second + 1, second + 2, second + 3, second + 4, vertex, segment}) {
    gx_set_object_deleted(open, id, true);
  }
  gx_file_close(index, true);

  const auto load = gx_load_file(dir() + "/top.gx_4");
  ASSERT_EQ(load.message, "");
  const auto& saved = *load.file;
  EXPECT_EQ(saved.object_id_max, f.object_id_max - 7);
  EXPECT_EQ(saved.primary_object, 1);
  EXPECT_EQ(gx_symbol_info_ptr(saved, 9).instance, first);
  EXPECT_EQ(gx_instance_info_ptr(saved, first).following_inst, 0);
  EXPECT_EQ(gx_instance_info_ptr(saved, first).symbol, 9);
  const int net = nth_object(saved, gx_type::net), pin = nth_object(saved, gx_type::pinpropfam);
  EXPECT_EQ(gx_pinpropfam_info_ptr(saved, pin).net, net);
  const auto& wire = nth_record<gx_object_segment_rec_t>(saved);
  EXPECT_EQ(wire.vertex1, pin);
  EXPECT_EQ(wire.vertex2, nth_object(saved, gx_type::vertex_2d));
  EXPECT_EQ(ids_of(lb_segments(saved, net)), std::vector<int>{wire.gene.object_id});
  EXPECT_EQ(saved.grid_obj_id, f.grid_obj_id - 7);
  EXPECT_EQ(scratch.read("top.gx_3"), sheet.bytes());
}

TEST_F(db_files, a_save_that_fails_leaves_the_version_before_current) {
  put_version(small_sheet(), "top", 3);
  const auto save = [&] { gx_file_close(gx_file_open(dir(), "top"), true); };
  const auto nothing_new = [&] {
    EXPECT_EQ(scratch.read("top.gx"), "_3        \n");
    EXPECT_FALSE(std::filesystem::exists(scratch.file("top.gx_4")));
  };
  expect_stop(
      [&] {  // a segment that lost its end
        const auto index = gx_file_open(dir(), "top");
        auto& open = gx_ptrto_gene_file_buf(index);
        for (const auto* o : open.ptr_to_ar_objindex) {
          if (o->object_type == gx_type::vertex_2d) gx_set_object_deleted(open, o->object_id, true);
        }
        gx_file_close(index, true);
      },
      gx_code::object_id_invalid);
  nothing_new();
  expect_stop(
      [&] {  // a full disk
        std::signal(SIGXFSZ, SIG_IGN);
        const rlim_t few_bytes = small_sheet().bytes().size() - 1;
        const rlimit few{few_bytes, few_bytes};
        setrlimit(RLIMIT_FSIZE, &few);
        save();
      },
      gx_code::file_open_invalid, "top.gx_4\" ");
  nothing_new();
  // A link that cannot be put in place.
  std::filesystem::create_directories(scratch.file("top.gx.new/held"));
  expect_stop(save, gx_code::file_close_invalid, "error in close file in = ");
  nothing_new();
  // What an attacker's link points to is not written.
  scratch.write("precious", "kept");
  std::filesystem::create_symlink(scratch.file("precious"), scratch.file("top.gx_4"));
  expect_stop(save, gx_code::file_open_invalid, "impossible to open");
  EXPECT_EQ(scratch.read("precious"), "kept");
}

TEST_F(db_files, the_listing_shows_every_object) {
  gx_builder sheet;
  sheet.add(gx_type::main);
  auto& instance = sheet.add_record<gx_object_instance_rec_t>(1);
  instance.gene.origin = {5, -6};
  instance.gene.bounds = {1, 2, 3, 4};
  instance.n0_version = 9;
  instance.fliph = 1;
  sheet.add_property(1, "INST", "I1");
  put_version(sheet, "top", 1);
  const auto index = gx_file_open(dir(), "top");
  gx_set_object_deleted(gx_ptrto_gene_file_buf(index), 2, true);
  std::filesystem::create_directory(scratch.file("list_obj_file"));
  testing::internal::CaptureStdout();
  EXPECT_EQ(gx_object_list(index), "\"" + dir() + "/list_obj_file\" : Is a directory");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "?? gx_object_list : impossible to open:'" + dir() + "/list_obj_file' (for W)\n");
  std::filesystem::remove(scratch.file("list_obj_file"));
  EXPECT_EQ(gx_object_list(index), "");
  EXPECT_EQ(scratch.read("list_obj_file"),
            sections_of_case("design/list_obj_file.txt").at("list_obj_file"));
}

}  // namespace
