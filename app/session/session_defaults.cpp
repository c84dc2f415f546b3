// The state of a fresh session, and the user's files that change its menus and keys.
#include <cstdio>
#include <string>

#include "app/language/do_file.h"
#include "app/session/input/event_loop.h"
#include "app/sheet/views.h"
#include "gx/display/input/menu_file.h"
#include "gx/text/messages/debug.h"
#include "gx/text/strings.h"
#include "gx/text/text_files.h"
#include "gx/vext.h"
#include "platform/files.h"

namespace {

constexpr std::string_view menu_file = "$VELMORAN/kivo/init_menu";
constexpr std::string_view key_file = "$VELMORAN/kivo/init_key";

// The rest is fresh.
void begin_in_edit_viewport() {
  gx_vext.viewport_id = kv_view_roles.viewport_edit;
  gx_vext.obj_pos = gx_vext.base_point = kv_first_position;
  gx_vext.display_on = true;
}

// The command and list texts, by the size of the window.
void place_texts() {
  auto& v = gx_vext;
  const int width = v.bitmap_size.x, height = v.bitmap_size.y;
  const auto part = [](int size, int factor, int of) {
    return static_cast<std::int16_t>(size * factor / of);
  };
  v.cmd_x0 = part(width, 7, 1024);
  v.cmd_y0 = part(height, 10, 768);
  v.cmd_xi = 7;
  v.cmd_yi = 10;
  v.cmd_color = 7;
  v.listb_x0 = part(height, 5, 768);
  v.listb_y0 = part(height, 10, 768);
  v.listb_xi = 5;
  v.listb_yi = 10;
  v.list_color = 7;
  v.viewport_back_color = 0;
}

bool can_be_read(std::string_view path) {
  return x_file(gx_popen_file(path, 'R', true)) != nullptr;
}

void trace_file(const char* format, std::string_view path) {
  gx_debug(format, static_cast<int>(path.size()), path.data());
}

void run_user_files() {
  trace_file("!!! init_menu  file  OPEN OK \"%.*s\" \n", menu_file);
  if (can_be_read(menu_file)) gx_read_menu(menu_file);

  trace_file("!!! init_key  file  \"%.*s\" \n", key_file);
  if (!can_be_read(key_file)) return;
  kv_array_param_t args, vars;
  kv_process_line(gx_string(" DO " + std::string(key_file) + " "), args, vars);
}

}  // namespace

void kv_init_menu_action() {
  begin_in_edit_viewport();
  place_texts();
  kv_set_view_roles();
  kv_set_default_bindings();
  kv_set_default_menus();
  run_user_files();
  gx_debug_line(" KV_INIT_MENU_ACTION  : END ");
}
