// Selecting and unselecting what meets a rectangle of a sheet.
#pragma once

#include "gx/db/ids.h"
#include "gx/text/records.h"

// What an area takes.
enum class kv_area_kind : char {
  all = '1',
  instances = '2',
  nets = '3',
  vertices = '4',
  frames = '5',
  properties = '6',
  first = '7',  // the first object found, then the scan stops
};

// Sets (or clears) the selected flag of every object that meets the rectangle. The base point
// becomes the origin, on the snap grid, of the taken object nearest to the top left. False when
// nothing was taken.
bool kv_select_area(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1,
                    gx_pointreal_t p2);
bool kv_unselect_area(kv_area_kind kind, gx_file_index_t file_index, gx_pointreal_t p1,
                      gx_pointreal_t p2);

// Clears the selected flag of all objects, as a step of its own of what can be taken back.
void kv_unselect_all(gx_file_index_t file_index);

// Selects an instance, and while SMAsh is on its body and the properties there too.
void kv_select_instance(gx_file_index_t file_index, int inst);

// Clears the picked and temporary marks of all instances and their pins, or of all nets.
void kv_setinst_notpicked_nottempo(gx_file_index_t file_index);
void kv_setnet_notpicked_nottempo(gx_file_index_t file_index);
