// The soundness of a file that was read: its references between objects.
#pragma once

#include <string>

#include "gx/db/file/file_records.h"

// What is unsound in the references between the objects (tree links, instance chains, ends of
// segments): "" when every walk along them ends and meets the types it expects.
std::string gx_reference_fault(const gx_file_gene_recf_t& file);
