// Single objects as shapes: primitives, pins, nets. `inst` is the instance that places the object,
// 0 for none; `selected` draws it as selected even if it is not. Objects that are deleted or hidden
// have no shape. Damage that cannot be drawn is traced and stops the program.
#pragma once

#include "gx/db/file/file_records.h"
#include "gx/picture/shape.h"

// Another type than a primitive's stops with object_type_invalid; a tag has no shape. A page with
// its grid is drawn also if it is hidden.
void gx_primitive_shape(const gx_file_gene_recf_t& file, int id, int inst, bool selected,
                        const gx_sink_t& sink);
void gx_pin_shape(const gx_file_gene_recf_t& file, int id, int inst, bool selected,
                  const gx_sink_t& sink);
// A net's texts, then segment by segment the marks and dots of its ends and its line.
void gx_net_shapes(const gx_file_gene_recf_t& file, int net, const gx_sink_t& sink);
