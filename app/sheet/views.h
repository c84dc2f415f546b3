// Showing files in the edit and context viewports.
#pragma once

#include <array>
#include <optional>

#include "app/sheet/sheets_state.h"
#include "gx/db/file/file_records.h"
#include "gx/display/screen_state.h"
#include "gx/display/viewport_coords.h"

// The four viewports of the window, in the order of their ids: edit, cmd, list, context.
std::array<gx_viewport_init_rec_t, 4> set_viewports();

// What they are, and the same for a session that begins.
inline constexpr gx_view_roles_t kv_view_roles = {.viewport_edit = 1,
                                                  .viewport_cmd = 2,
                                                  .viewport_list = 3,
                                                  .viewport_context = 4,
                                                  .viewport_activ = 4};
void kv_set_view_roles();

// The frame of a viewport: where the pointer is, and elsewhere.
void kv_frame_active(gx_vpid_t vpid);
void kv_frame_quiet(gx_vpid_t vpid);

// Draws a sheet whole, or a part of it, in a viewport (only while the display is on).
void kv_display_picture_all(gx_vpid_t vpid, gx_file_index_t file_index);
void kv_display_picture_area(gx_vpid_t vpid, gx_file_index_t file_index, gx_pointreal_t p1,
                             gx_pointreal_t p2);
// What a viewport showed before, as gx_viewport_shown reported it.
void kv_display_picture_shown(gx_vpid_t vpid, gx_file_index_t file_index, const gx_shown_t& shown);

// Draws the viewport again: `update` keeps the zoom, `expose` follows a new window size.
void kv_update_viewport_edit();
void kv_expose_viewport_edit();
void kv_update_viewport_context();
void kv_expose_viewport_context();
void kv_update_basept_edit_cmd();

// Called with every picture of a sheet, when all that is drawn on the sheet is there; none at
// first.
using kv_sheet_overlay_t = void (*)(gx_vpid_t vpid, gx_file_index_t file_index);
void kv_set_sheet_overlay(kv_sheet_overlay_t overlay);
// Draws the context viewport in place of its sheet; null: the sheet again. Draws nothing itself.
using kv_context_picture_t = void (*)(gx_vpid_t vpid);
void kv_set_context_picture(kv_context_picture_t picture);

// The window's title says the place: the design's path, and below the top the names down to the
// sheet, "/X1/X2", whether there was a RUN or not.
void kv_show_title();

// Puts a cross (gx_display_cross, gx_keep_cross) at the origin of every component of a symbol file.
void kv_cross_components(gx_vpid_t vpid, const gx_file_gene_recf_t& file,
                         void (*put)(gx_vpid_t vpid, gx_pointreal_t p));

// --- the views that the edit viewport showed before the last zooms, pans, walks and jumps
// Keeps what is shown, before it changes; the last 20 are kept.
void kv_remember_view();

// Takes the last one that differs from what is shown; nothing when there is none left.
std::optional<kv_last_view_t> kv_take_last_view();
