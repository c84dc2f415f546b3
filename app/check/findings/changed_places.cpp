#include "app/check/findings/changed_places.h"

#include "gx/text/at.h"

namespace {

struct kind_t {
  kv_named what;
  bool is_gone = false;
};
kind_t kind_of_change(kv_change change) {
  constexpr kind_t kinds[] = {{kv_named::macro},      {kv_named::macro, true}, {kv_named::macro},
                              {kv_named::inst, true}, {kv_named::inst},        {kv_named::inst},
                              {kv_named::inst},       {kv_named::net},         {kv_named::net},
                              {kv_named::net},        {kv_named::pin}};
  return gx_at(kinds, change);
}

// The path of a pin without the bit that stands after it: "/M2/D[3]".
std::string without_bit(const std::string& path) {
  const bool has_bit = path.ends_with(']') &&
                       path.find_last_not_of("0123456789", path.size() - 2) == path.rfind('[');
  return has_bit ? path.substr(0, path.rfind('[')) : path;
}

}  // namespace

kv_changed_place_t kv_changed_place(const kv_expanded_t& expanded, const kv_change_t& change) {
  const kind_t kind = kind_of_change(change.change);
  if (kind.is_gone) return {change.before, change.sheet, 0, std::nullopt};
  const bool is_pin = kind.what == kv_named::pin;
  const std::string path = is_pin ? without_bit(change.pins.front().pin) : change.after;
  const auto object = kv_object_at(expanded, kind.what, path);
  if (!object) return {path, "", 0, std::nullopt};
  const auto drawn = kv_place_of(expanded.netlist, expanded.origins, *object);
  // A pin is recognised by its instance.
  const kv_changed_object_t marked =
      is_pin ? kv_changed_object_t{kv_named::inst, path.substr(0, path.rfind('/'))}
             : kv_changed_object_t{kind.what, path};
  const auto at = kv_visit_path(expanded.netlist, expanded.origins, drawn.visit);
  return {path, std::string(at), drawn.object_id, marked};
}
