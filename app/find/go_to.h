// Going to a place of the design: the editor walks to the sheet, selects the object there and shows
// it in the middle of the edit viewport.
#pragma once

#include <string>
#include <string_view>

#include "app/find/drawings.h"
#include "app/sheet/sheets_state.h"

// Goes to an object of the sheet at the end of a way that the drawings have; object 0: shows the
// sheet whole and selects nothing. Instances, nets, frames, pins (by their pin property family),
// vertices, segments and properties can be shown. What was selected on that sheet is no longer. "",
// or what is wrong; the view is then unchanged, unless a sheet that was just read can no longer be
// opened.
std::string kv_go_along(kv_drawings_t& drawings, const kv_way_t& way, int object_id);

// Shows a view again; the level it was on is opened again.
std::string kv_go_back(const kv_last_view_t& view);

// The same as kv_go_along for the simulation path of the sheet: "", "/", "/XR/X2" or "/XR/X2/".
std::string kv_go_to(std::string_view sheet_path, int object_id);
