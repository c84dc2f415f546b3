// Any bytes as a menu file: what is read of it is written, read and written again as the same text.
#include <cstdint>

#include "fuzz/session.h"
#include "gx/display/input/menu_file.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_prepare(build_design("sheet top\n page 20,20\n"));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz_start();
  const auto& directory = fuzz_directory();
  directory.write("menu", {reinterpret_cast<const char*>(data), size});
  gx_read_menu("menu");
  gx_print_menu("printed");
  const auto errors = gx_vext.num_errors;
  gx_read_menu("printed");
  gx_print_menu("again");
  // A label and a command together may be longer than a line can be read.
  if (gx_vext.num_errors == errors)
    fuzz_expect(directory.read("printed") == directory.read("again"));
  return 0;
}
