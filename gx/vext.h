// The one global state record of the GX package: the sum of what its rooms hold.
//
// Each part is declared and documented in the room that owns it; a room below this header knows its
// own part and those under it (gx_session, gx_list, gx_files, gx_undo, gx_edit). A part is made
// fresh by one assignment: static_cast<gx_menu_state_t&>(gx_vext) = {}.
#pragma once

#include "gx/db/file/file_state.h"
#include "gx/db/undo.h"
#include "gx/display/input/input_state.h"
#include "gx/display/input/key_state.h"
#include "gx/display/input/menu_state.h"
#include "gx/display/screen_state.h"
#include "gx/edit/edit_state.h"
#include "gx/picture/picture_state.h"
#include "gx/plot/plot_state.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/messages/session_state.h"

struct gx_defref_var_rec_t : gx_session_state_t,
                             gx_list_state_t,
                             gx_file_state_t,
                             gx_undo_state_t,
                             gx_edit_state_t,
                             gx_picture_state_t,
                             gx_plot_state_t,
                             gx_screen_state_t,
                             gx_input_state_t,
                             gx_menu_state_t,
                             gx_key_state_t {};

extern gx_defref_var_rec_t gx_vext;

// A fresh record; what the old one held open stays open (its owners close it).
void gx_reset_state();
