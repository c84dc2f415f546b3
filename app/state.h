// The application's one global state record: the sum of what its themes hold.
//
// Each part is declared and documented in the theme that owns it. A part is made fresh by one
// assignment: static_cast<kv_selection_state_t&>(kv_pext) = {}.
#pragma once

#include "app/check/check_state.h"
#include "app/find/find_state.h"
#include "app/hint/hint_state.h"
#include "app/run/run_state.h"
#include "app/session/session_state.h"
#include "app/sheet/selection_state.h"
#include "app/sheet/sheets_state.h"
#include "app/tree/tree_state.h"
#include "app/values/values_state.h"

struct kv_defref_var_rec_t : kv_sheets_state_t,
                             kv_selection_state_t,
                             kv_run_state_t,
                             kv_check_state_t,
                             kv_session_state_t,
                             kv_find_state_t,
                             kv_values_state_t,
                             kv_hint_state_t,
                             kv_tree_state_t {};

extern kv_defref_var_rec_t kv_pext;
