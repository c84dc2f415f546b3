// The shapes of an object with all below it, of an instance with its symbol, pins and properties,
// and of whole sheets.
#pragma once

#include "gx/db/queries.h"
#include "gx/picture/shape.h"

// An object and all below it: nets whole, pins, primitives but vertices and tags. A net as the
// root stops with invalid_level. `inst` places it, 0 for none.
void gx_tree_shapes(const gx_file_gene_recf_t& file, int root, int inst, bool selected,
                    const gx_sink_t& sink);

// Its symbol's graphics and texts (but for those that the instance has a property of its own for),
// for every pin that is not deleted its property family and itself, and its own properties. A bad
// instance, symbol or a deleted symbol is traced and stops the program.
void lb_instance_shapes(const gx_file_gene_recf_t& file, int inst, const gx_sink_t& sink);

// All of a sheet that are not deleted.
void lb_frame_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink);
void lb_all_instance_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink);
void lb_all_net_shapes(const gx_file_gene_recf_t& file, const gx_sink_t& sink);
