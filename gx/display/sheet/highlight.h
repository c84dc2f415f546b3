// Nets that are marked wherever they are drawn: in the selection colour, with a name beside them;
// instances, in the colour of a mark.
//
// The marks belong to the sheet in a slot, not to the sheet's file: who opens another sheet into
// the slot clears them and marks anew. Marking draws nothing by itself; the pictures drawn from
// then on show the marks. Without marks a redraw costs one look at an empty list.
#pragma once

#include <string_view>

#include "gx/display/screen_state.h"

// Marks a net of the sheet, whole, once, in one of the colours of highlights. A name that is not
// empty is shown in a probe at `vertex`, a vertex or a pin's property family; 0 takes the first end
// of the net's first segment. Ids that the file does not hold (any more) are passed over when it is
// drawn. Where no wire of it is in view, its pins and texts are marked instead.
void gx_highlight_net(gx_file_index_t file_index, int net_id, std::string_view name, int vertex = 0,
                      int color = 1);
// Marks one segment of a net that is not marked as a whole.
void gx_highlight_segment(gx_file_index_t file_index, int segment_id);
// Marks an instance, with its texts.
void gx_highlight_instance(gx_file_index_t file_index, int inst_id, int color);

void gx_highlight_clear(gx_file_index_t file_index);  // of that sheet
void gx_highlight_clear_all();

// The mark of a net, segment or instance; null when it has none.
const gx_highlight_t* gx_highlight_of(gx_file_index_t file_index, int id);
