#include "gx/text/state.h"

gx_defref_var_rec_t gx_vext;

void gx_reset_state() { gx_vext = {}; }
