// What the objects of a file say by themselves: links, chains, boxes, the circle of an arc, where a
// segment begins. A description says such a field only where the file has something else.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "gx/db/file/record_tables.h"

// Fills these fields. `fathers` gives for each object the one that it is under, 0: none.
// `settle` is called after each step and puts in what is to be something else; what is worked out
// later builds on it. Returns what is unsound in the references (gx_reference_fault), "" when
// nothing is; the fields that follow from them are not filled then.
std::string gxm_derive(gx_file_gene_recf_t& file, std::span<const int> fathers,
                       const std::function<void()>& settle);

// Whether it fills this field: of objects of the type, or of the header (nil).
bool gxm_is_derived(gx_type type, const gx_field_t& field);

// The steps that descriptions of parts and wires share.
// Chains the instances of each symbol in the order of their ids.
void gxm_chain_instances(const gx_file_gene_recf_t& file);
// Gives every container the box that holds its children. What an instance covers is its symbol
// and its pins, not the texts beside it.
void gxm_grow_boxes(const gx_file_gene_recf_t& file);
