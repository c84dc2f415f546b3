#include "export/changes_json.h"

void kv_write_changes(const std::vector<kv_change_t>& changes, kv_output_t& out) {
  const auto changed = [&](std::string_view what, const std::string& name,
                           const std::string& before, const std::string& after) {
    out << "{\"" << what << "\": ";
    out.json(name) << ", \"before\": ";
    out.json(before) << ", \"after\": ";
    out.json(after) << '}';
  };
  out << "{\"format\": \"kivo-difference\", \"version\": 1, \"changes\": [";
  kv_between_t between(",");
  for (const kv_change_t& change : changes) {
    out << between.next() << "\n ";
    out << "{\"change\": ";
    out.json(kv_change_word(change.change)) << ", \"before\": ";
    out.json(change.before) << ", \"after\": ";
    out.json(change.after) << ", \"values\": [";
    kv_between_t between_values(", "), between_pins(", ");
    for (const kv_changed_value_t& value : change.values) {
      out << between_values.next();
      changed("name", value.name, value.before, value.after);
    }
    out << "], \"pins\": [";
    for (const kv_changed_pin_t& pin : change.pins) {
      out << between_pins.next();
      changed("pin", pin.pin, pin.before, pin.after);
    }
    out << "]}";
  }
  out << "\n]}\n";
}
