#include "app/state.h"

kv_defref_var_rec_t kv_pext;
