#include "gx/text/messages/front.h"

#include <string>

#include "platform/timing.h"

void gx_pause(int ms) {
  if (gx_front().may_wait) xdelayms(ms);
}

void gx_complain(std::string_view message) {
  const std::string line = std::string(gx_front().message_head).append(message).append("\n");
  std::fputs(line.c_str(), gx_front().messages());
}
