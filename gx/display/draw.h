// All of drawing: design objects into a viewport. Items outside the viewport are skipped before any
// request is made. Without a display nothing happens.
#pragma once

#include "gx/display/draw_net.h"
#include "gx/display/draw_object.h"
#include "gx/display/draw_prim.h"
#include "gx/display/grid.h"
#include "gx/display/markers.h"
#include "gx/display/probe.h"
#include "gx/display/shapes.h"
#include "gx/display/sheet_drawing.h"
#include "gx/display/sheet_selection.h"
