#include "expand/run/estimate.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <limits>

#include "expand/origins.h"
#include "platform/files.h"

namespace {

// Far beyond any memory, and far enough from the end of the type to add two.
constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() / 4;

// A short string: its record and what its path adds to the name.
constexpr std::int64_t string_bytes = sizeof(kv_string_record_t) + 8;

// A record with the properties that are kept of it.
template <typename Record>
std::int64_t bytes_of(const kv_prop_list_t& kept) {
  constexpr std::int64_t own = sizeof(Record), property = sizeof(kv_prop_record_t);
  return own + kept.count * property;
}

}  // namespace

void kv_estimate_own(const kv_setup_t& setup, kv_sheet_t& sheet) {
  const std::int64_t inst = bytes_of<kv_inst_record_t>(setup.property_instance);
  const std::int64_t pin = bytes_of<kv_pin_record_t>(setup.property_pin);
  const std::int64_t pinm = bytes_of<kv_pinm_record_t>(setup.property_pin);
  const std::int64_t net = bytes_of<kv_net_record_t>(setup.property_net);
  std::int64_t bytes = sizeof(kv_visit_t);
  for (const auto& each : sheet.insts) {
    const std::int64_t pin_bytes = (each.is_primitive ? pin : pinm) + string_bytes;
    bytes += inst + 2 * string_bytes + each.nb_of_pin * pin_bytes;
  }
  for (const auto& group : sheet.groups) {
    if (group.port < 0) bytes += (1 + std::max(group.width, 0)) * (net + 2 * string_bytes);
  }
  sheet.visits = std::min(sheet.visits + 1, most);
  sheet.bytes = std::min(sheet.bytes + bytes, most);
}

void kv_estimate_below(kv_sheet_t& sheet, const kv_sheet_t& below) {
  sheet.visits = std::min(sheet.visits + below.visits, most);
  sheet.bytes = std::min(sheet.bytes + below.bytes, most);
}

std::int64_t kv_free_memory() {
  std::int64_t bytes = most;
  if (const x_file file = x_open_regular_file("/proc/meminfo")) {
    char line[128];
    long long kilobytes = 0;
    while (std::fgets(line, sizeof line, file.get()) != nullptr) {
      if (std::sscanf(line, "MemAvailable: %lld kB", &kilobytes) == 1) bytes = kilobytes * 1024;
    }
  }
  rlimit limit;
  if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
    bytes = std::min(bytes, static_cast<std::int64_t>(limit.rlim_cur));
  }
  return bytes;
}
