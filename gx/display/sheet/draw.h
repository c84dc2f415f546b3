// All of drawing: design objects into a viewport. Items outside the viewport are skipped before any
// request is made. Without a display nothing happens.
#pragma once

#include "gx/display/sheet/draw_object.h"
#include "gx/display/sheet/grid.h"
#include "gx/display/sheet/markers.h"
#include "gx/display/sheet/probe.h"
#include "gx/display/sheet/sheet_drawing.h"
#include "gx/display/strokes/draw_strokes.h"
