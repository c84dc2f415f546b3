// All of drawing: design objects into a viewport. Items outside the viewport are skipped before any
// request is made. Without a display nothing happens.
#pragma once

#include "gx/display/draw_object.h"
#include "gx/display/draw_strokes.h"
#include "gx/display/grid.h"
#include "gx/display/markers.h"
#include "gx/display/probe.h"
#include "gx/display/sheet_drawing.h"
