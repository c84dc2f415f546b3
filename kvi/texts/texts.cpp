// A design, and the difference of two, as JSON: for callers to whom a call for each record costs
// more than the reading.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "compare/changes.h"
#include "export/json.h"
#include "kvi/state.h"

namespace {

struct text_deleter_t {
  void operator()(char* text) const { std::free(text); }
};
// What was given last.
std::unique_ptr<char, text_deleter_t> given;
std::string difference_error;

// What `write` writes into the file that it is called with; null without memory.
template <typename Write>
const char* text_of(std::int64_t* len, Write write) {
  char* text = nullptr;
  std::size_t size = 0;
  given.reset();
  std::FILE* const file = open_memstream(&text, &size);
  if (!file) return nullptr;
  write(file);
  const bool is_whole = std::ferror(file) == 0;
  if (std::fclose(file) == 0 && is_whole) given.reset(text);
  if (!given) std::free(text);
  if (given && len) *len = static_cast<std::int64_t>(size);
  return given.get();
}

const char* refused(std::string why) {
  difference_error = std::move(why);
  return nullptr;
}

}  // namespace

const char* kvi_get_json(std::int64_t* len) {
  return text_of(len, [](std::FILE* file) { kv_write_json(kvi_loaded(), file); });
}

const char* kvi_get_difference(const char* old, const char* now, std::int64_t* len) {
  const char* const paths[] = {old, now};
  kvi_design_t designs[2];
  for (std::size_t i = 0; i < 2; ++i) {
    if (!paths[i] || !*paths[i]) return refused("no file named");
    const kvi_loaded_t loaded = kvi_open_design(designs[i], paths[i]);
    if (loaded.result != kvi_load_result::loaded) return refused(loaded.message);
  }
  const auto changes =
      kv_compare(kv_compared(kvi_netlist_t(designs[0])), kv_compared(kvi_netlist_t(designs[1])));
  for (std::size_t i = 0; i < 2; ++i)
    if (!designs[i].is_unchanged()) return refused(kvi_changed_message(paths[i]));
  difference_error.clear();
  const char* const text = text_of(len, [&](std::FILE* file) {
    kv_output_t out(file);
    kv_write_changes(changes, out);
  });
  return text ? text : refused("no memory");
}

const char* kvi_difference_error() { return difference_error.c_str(); }
