// The listing of a file.
#pragma once

#include <string>

#include "gx/db/ids.h"

// The dump of every object into "list_obj_file" of the file's directory; "", or the file's path and
// why it cannot be written.
std::string gx_object_list(gx_file_index_t file_index);
