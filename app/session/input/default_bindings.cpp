// The key bindings of a fresh session. Every other key runs nothing: a single blank, or for a
// control key an empty text.
#include <string_view>

#include "app/session/input/event_loop.h"
#include "gx/display/input/keys.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

struct binding_t {
  std::string_view key, command;
};

constexpr binding_t bindings[] = {
    // function keys pressed: alone, with shift, control, alt
    {"f1", "MARK RECT "},
    {"f1s", "MARK RECT "},
    {"f1c", "MARK RECT "},
    {"f1a", "MARK RECT "},
    {"f2", "UNSELECT ALL  "},
    {"f2s", "MARK RECT "},
    {"f2c", "MARK RECT "},
    {"f2a", "MARK RECT "},
    {"f3", "MARK RECT "},
    {"f3s", "CHANGE PROPERTY POSITION "},
    {"f3c", "CHANGE PROPERTY SWITCH VISIBLE "},
    {"f3a", "CHANGE PROPERTY SWITCH NOVISIBLE "},
    {"f4s", "COMMAND \"CHANGE PROPERTY VALUE \" "},
    {"f4c", "SNAP ON "},
    {"f4a", "SNAP OFF "},
    {"f5a", "POP "},
    {"f7s", "STATUS PROPERTY "},
    {"f7c", "CHECK SHEET "},
    {"f7a", "SMASH ON "},
    {"f8", "VIEW DOWN "},
    {"f9", "VIEW UP "},
    {"f9c", "BYE "},
    {"f9a", "QUIT "},
    {"f11", "BASEPOINT "},
    {"f11c", "TRANSCRIPT ON "},
    {"f11a", "SMASH OFF "},
    {"f12", "MARK RECT "},
    {"f12s", "VIEW ALL "},
    {"f12c", "DISPLAY ON "},
    {"f12a", "DISPLAY OFF "},
    // function keys released
    {"f1u", "SELECT AREA ALL  "},
    {"f1us", "SELECT AREA INST "},
    {"f1uc", "SELECT AREA VERTEX "},
    {"f1ua", "SELECT AREA FRAME  "},
    {"f2u", ""},
    {"f2us", "UNSELECT AREA ALL  "},
    {"f2uc", "UNSELECT AREA INST "},
    {"f2ua", "UNSELECT AREA VERTEX "},
    {"f3u", "SELECT AREA PROPERTY "},
    {"f3us", ""},
    {"f3uc", ""},
    {"f3ua", ""},
    {"f12u", "VIEW AREA "},
    {"f12us", ""},
    {"f12uc", ""},
    {"f12ua", ""},
    // arrows
    {"au", "$CU1 "},
    {"aus", "$VPTU5 "},
    {"auc", "$CU4 "},
    {"aua", "$VPTU20 "},
    {"al", "$CL1 "},
    {"als", "$VPTL5 "},
    {"alc", "$CL4 "},
    {"ala", "$VPTL20 "},
    {"ad", "$CD1 "},
    {"ads", "$VPTD5 "},
    {"adc", "$CD4 "},
    {"ada", "$VPTD20 "},
    {"ar", "$CR1 "},
    {"ars", "$VPTR5 "},
    {"arc", "$CR4 "},
    {"ara", "$VPTR20 "},
    // buttons pressed and released
    {"b1", "MARK RECTANGLE "},
    {"b1u", "VIEW AREA "},
    {"b2", "$DM1 "},
    {"b2u", "$XIM "},
    {"b3", "MARK RECTANGLE "},
    {"b3u", "SELECT AREA ALL "},
    // control keys
    {"cntl_n", "QUIT "},
    {"cntl_q", "QUIT "},
    {"cntl_r", "REDO "},
    {"cntl_u", "UNDO "},
    {"cntl_y", "BYE "},
};

}  // namespace

void kv_set_default_bindings() {
  auto& v = gx_vext;
  const gx_string_record_t blank = gx_string(" ");
  for (auto* const table : {&v.action_f, &v.action_fs, &v.action_fc, &v.action_fa, &v.action_fup,
                            &v.action_fsup, &v.action_fcup, &v.action_faup}) {
    table->fill(blank);
  }
  for (auto* const table : {&v.action_a, &v.action_as, &v.action_ac, &v.action_aa}) {
    table->fill(blank);
  }
  v.action_but.fill(blank);
  v.action_ck.fill({});
  v.action_other.fill({});
  for (const binding_t& binding : bindings) gx_set_key_action(binding.key, binding.command);
}
