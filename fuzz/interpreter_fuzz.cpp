// Command lines that nobody would type, against a small hierarchical design without a display.
//
// An input is a command file. No shell command is started, and "/" is replaced, so that no input
// reaches beyond the scratch directory in which the target runs.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/language/commands.h"
#include "app/state.h"
#include "expand/store.h"
#include "gx/db/files.h"
#include "gx/display/window.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "platform/shell.h"
#include "tests/support/make_design.h"

// Waits are for people and servers, and here is neither.
extern "C" int nanosleep(const timespec*, timespec*) { return 0; }

namespace {
constexpr std::size_t max_lines = 50;
constexpr char design[] = R"(
symbol two
  line 0,0 0,4
  pin 1 0,0 IXO
  pin 2 0,4 IXO
  prop CLASS=R
  default VALUE=1k
  show VALUE 1,2
symbol portin
  pin P 0,0 IXO
  prop CLASS=PORTIN
symbol block
  rect 0,0 4,4
  pin A 0,2 IN
sheet block
  page 20,20
  port A portin 2,4
  part R1 two 8,4
  net A
    wire A - R1.1
sheet top
  page 40,20
  part B1 block 6,6
  part R1 two 4,6
  net N1
    wire R1.1 4,4 5,4 5,8 B1.A
)";

// Where the target runs; removed at the end of the process.
const scratch_directory& scratch() {
  static const scratch_directory directory;
  return directory;
}

// A menu file that begins below its first level ends the program, as it should.
bool reads_menu_file(std::string_view line) {
  constexpr std::string_view word = "RMENU";
  for (std::size_t i = 0; i < line.size(); ++i)
    if (gx_equal(word, line.substr(i))) return true;
  return false;
}

void start_session() {
  gx_reset_state();
  kv_pext = {};
  for (auto* list : {&kv_sext.property_instance, &kv_sext.property_pin, &kv_sext.property_net})
    list->count = 0;
  kv_sext.primitive.count = kv_sext.parameter.count = 0;
  kv_empty_store();
  gx_init_nograph();
  auto& level1 = kv_pext.arrayof_file[0];
  level1.file_index = gx_file_open("top", "sheet");
  level1.file_path = gx_string("top");
  kv_pext.file_level_max = kv_pext.file_level_cur = 1;
  kv_pext.file_id_cur = kv_pext.file_id_context = level1.file_index;
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  xshell_disable();
  make_design(scratch(), design);
  scratch().write("f", "HARD $ARG1\nASSI $VAR1 $ARG2\nDO f $VAR1 $ARG1\n");
  setenv("VELMORAN", "product", 1);
  if (chdir(scratch().path().c_str()) != 0) std::abort();
  kv_sext.designfile = open("top_design_kv", O_RDWR | O_CREAT, 0600);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  start_session();
  std::string_view text(reinterpret_cast<const char*>(data), size);
  for (std::size_t n = 0; n < max_lines && !text.empty(); ++n) {
    const std::string_view bytes = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), bytes.size() + 1));
    gx_string_record_t line;
    for (const char c : bytes.substr(0, gx_max_string_length))
      line.char_[line.len++] = c == '/' ? '_' : c;
    if (!reads_menu_file(gx_view(line))) kv_process_command(line, kv_pext.ext_arg, kv_pext.top_var);
  }
  return 0;
}
