#include "expand/store.h"

kv_defref_exp_rec_t kv_sext;
std::FILE* kv_debf = nullptr;
