#include "gx/vext.h"

constinit gx_defref_var_rec_t gx_vext;  // costs a start nothing

gx_session_state_t& gx_session = gx_vext;
gx_list_state_t& gx_list = gx_vext;
gx_file_state_t& gx_files = gx_vext;
gx_undo_state_t& gx_undo = gx_vext;
gx_edit_state_t& gx_edit = gx_vext;

void gx_reset_state() { gx_vext = {}; }
