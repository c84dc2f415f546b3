// Replaying the steps of the undo list (gx/db/undo.h). For editors; no program of the house does.
#pragma once

// One step backward or forward; false when there is none left. A property whose switches come back
// is shown or hidden with them.
bool gx_undo_restore_one_step();
bool gx_redo_restore_one_step();
