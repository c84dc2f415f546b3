// Command lines that nobody would type, against a small hierarchical design without a display.
//
// An input is a command file. No shell command is started, and "/" is replaced, so that no input
// reaches beyond the scratch directory in which the target runs.
#include <algorithm>
#include <cstdint>
#include <string>

#include "app/language/interpreter.h"
#include "fuzz/session.h"

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
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_prepare(build_design(design));
  fuzz_directory().write("f", "HARD $ARG1\nASSI $VAR1 $ARG2\nDO f $VAR1 $ARG1\n");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz_start();
  std::string_view text(reinterpret_cast<const char*>(data), size);
  for (std::size_t n = 0; n < max_lines && !text.empty(); ++n) {
    const std::string_view bytes = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), bytes.size() + 1));
    gx_string_record_t line;
    for (const char c : bytes.substr(0, gx_max_string_length))
      line.char_[line.len++] = c == '/' ? '_' : c;
    kv_process_command(line, kv_pext.ext_arg, kv_pext.top_var);
  }
  return 0;
}
