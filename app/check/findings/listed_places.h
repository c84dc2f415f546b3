// The list that SHOw FINding and NEXt FINding walk through.
#pragma once

#include "app/state.h"

// A command begins its list: the places of the one before are gone, and NEXt FINding starts anew.
inline void kv_begin_list(kv_listed listed) {
  kv_pext.listed = listed;
  kv_pext.listed_places.clear();
  kv_pext.finding_shown = 0;
}
