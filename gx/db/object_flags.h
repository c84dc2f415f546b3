// One bit of an object's status. An id that names nothing stops with object_id_invalid. The
// selected and deleted forms record an undo entry when the bit really changes.
#pragma once

#include "gx/db/file/file_records.h"

bool gx_inq_object_selected(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_temporary(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_create(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_open(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_picked(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_deleted(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_unvisible(const gx_file_gene_recf_t& file, int id);
bool gx_inq_object_fixed(const gx_file_gene_recf_t& file, int id);
void gx_set_object_selected(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_temporary(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_create(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_open(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_picked(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_deleted(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_unvisible(const gx_file_gene_recf_t& file, int id, bool on);
void gx_set_object_fixed(const gx_file_gene_recf_t& file, int id, bool on);

// The selected flag of every property child of a holder (the child-selected marking).
void gx_set_child_selected(const gx_file_gene_recf_t& file, int holder, bool on);
// Hides every property of a sheet or symbol file whose visible switch is off.
void gx_hide_invisible(const gx_file_gene_recf_t& file);
