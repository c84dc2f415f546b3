// Any bytes as an xschemrc, which may source itself and files that are not there.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "import/xschem/settings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int fd = ::memfd_create("xschemrc", 0);
  if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, data, size, 0) != static_cast<ssize_t>(size))
    std::abort();
  gxi_xschem_settings_t settings{{"env(PWD)", "/nowhere"}, {"env(HOME)", "/nowhere"}};
  std::list<std::string> files;
  gxm_messages_t messages;
  gxi_xschem_take_settings("/proc/self/fd/" + std::to_string(fd), settings, files, messages);
  return 0;
}
