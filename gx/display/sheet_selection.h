// Selecting whole objects: the flags of an object and of all below it, shown at once.
#pragma once

#include "gx/db/ids.h"

void lb_select_inst_prim(gx_file_index_t file_index, int inst);
void lb_unselect_inst_prim(gx_file_index_t file_index, int inst);
void lb_select_frame_prim(gx_file_index_t file_index, int frame);
void lb_unselect_frame_prim(gx_file_index_t file_index, int frame);
void lb_select_net(gx_file_index_t file_index, int net);
void lb_unselect_net(gx_file_index_t file_index, int net);
void lb_delete_symbol_prim(gx_file_index_t file_index, int symbol);
