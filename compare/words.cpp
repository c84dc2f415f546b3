#include "compare/words.h"

#include "platform/json.h"

namespace {

std::string net_text(const std::string& net) { return net.empty() ? "no net" : x_escaped(net); }
std::string value_text(const std::string& value) {
  return value.empty() ? "none" : x_escaped(value);
}

std::string pins_text(const kv_change_t& change) {
  std::string text;
  for (const kv_changed_pin_t& pin : change.pins)
    text += (text.empty() ? "" : ", ") + x_escaped(pin.pin);
  return text;
}

std::string instances_text(std::int32_t count) {
  return std::to_string(count) + (count == 1 ? " instance" : " instances");
}

}  // namespace

char kv_change_sign(kv_change change) {
  const bool gone = change == kv_change::instance_gone || change == kv_change::branch_gone;
  const bool added = change == kv_change::instance_new || change == kv_change::branch_new;
  return gone ? '-' : added ? '+' : '~';
}

std::string kv_change_text(const kv_change_t& change) {
  const std::string before = x_escaped(change.before), after = x_escaped(change.after);
  switch (change.change) {
    case kv_change::branch_renamed:
      return "branch " + before + " is now " + after;
    case kv_change::branch_gone:
      return "branch " + before + " is gone with " + instances_text(change.leaves);
    case kv_change::branch_new:
      return "branch " + after + " is new with " + instances_text(change.leaves);
    case kv_change::instance_gone:
      return "instance " + before + " is gone";
    case kv_change::instance_new: {
      std::string line = "instance " + after + " is new:", between = " ";
      for (const kv_changed_value_t& value : change.values) {
        line += between + x_escaped(value.name) + '=' + x_escaped(value.after);
        between = ", ";
      }
      for (const kv_changed_pin_t& pin : change.pins) {
        line += between + x_escaped(pin.pin) + " on " + net_text(pin.after);
        between = ", ";
      }
      return line;
    }
    case kv_change::instance_renamed:
      return "instance " + before + " is now " + after;
    case kv_change::values_changed: {
      std::string line = "instance " + after + ':', between = " ";
      for (const kv_changed_value_t& value : change.values) {
        line += between + x_escaped(value.name) + ' ' + value_text(value.before) + " -> " +
                value_text(value.after);
        between = ", ";
      }
      return line;
    }
    case kv_change::net_renamed:
      return "net " + before + " is now " + after;
    case kv_change::net_split:
      return "net " + before + " is split: now on " + after + " are " + pins_text(change);
    case kv_change::net_joined:
      return "net " + before + " is joined into " + after + " with " + pins_text(change);
    case kv_change::pin_moved:
      break;
  }
  return "pin " + pins_text(change) + " moved from " + net_text(change.before) + " to " +
         net_text(change.after);
}
