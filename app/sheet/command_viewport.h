// Which viewport, sheet and point a command means: by the words Edit or Context and typed
// coordinates, or by the pointer. Shared by the commands that view, select, mark and inspect.
#pragma once

#include <optional>
#include <string_view>

#include "app/language/command.h"
#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"
#include "gx/display/screen_state.h"
#include "gx/vext.h"

inline constexpr std::string_view kv_no_sheet = "# !! Error :  No sheet available in window ? ";
inline constexpr std::string_view kv_invalid_viewport = "# !! Error : Viewport Invalid ? ";
inline constexpr std::string_view kv_outside_page =
    "# !! Error : Invalid point (outside of page ...)  ? ";
inline constexpr std::string_view kv_3rd_not_edit_context =
    "# !! Error :  3 rd parameter incorrect (should be Edit/Context)  ? ";

// The edit or the context viewport and the file in it.
struct kv_view_t {
  gx_vpid_t vpid = 0;
  gx_file_index_t file_index = 0;  // 0: no file there

  bool is_edit() const { return vpid == gx_vext.viewport_edit; }
  std::string_view name() const { return is_edit() ? " Edit " : " Context "; }
  bool has_sheet() const { return file_index >= 1 && file_index <= gx_max_files; }
  // Shows the symbol of ACTivate SYMbol, whose objects cannot be selected.
  bool is_symbol() const;
  gx_file_gene_recf_t& file() const;  // only when has_sheet
};

kv_view_t kv_edit_view();
kv_view_t kv_context_view();
// By a word that begins with E or C; by the pointer, when it is in one of the two.
std::optional<kv_view_t> kv_view_named(std::string_view word);
std::optional<kv_view_t> kv_view_at_pointer();

// How a command answers when it cannot have the view it needs. `symbol` empty: the activated
// symbol will do.
struct kv_view_answers_t {
  std::string_view bad_word;
  std::string_view no_viewport = kv_invalid_viewport;
  std::string_view symbol = {};
};

// The view named by word `n`, or under the pointer when there is no such word; nothing after the
// refusal (`keyword` and the words from `first` on, then the line that says why).
std::optional<kv_view_t> kv_wanted_view(std::string_view keyword, const kv_command_t& command,
                                        int n, const kv_view_answers_t& answers, int first = 3);

// Words n and n + 1 as a point; nothing when they are no numbers.
std::optional<gx_pointreal_t> kv_typed_point(const kv_command_t& command, int n);
// The same, and the point lies in the page of the file.
std::optional<gx_pointreal_t> kv_typed_point_in_page(const kv_command_t& command, int n,
                                                     const gx_file_gene_recf_t& file);

// The corners of an area: from the marked corner (obj_ptr1) to the object position, or typed in
// words n .. n + 3; these must lie in the page and become the two. Ends a rubber rectangle. Nothing
// after the refusal.
struct kv_area_t {
  gx_pointreal_t p1, p2;
};
std::optional<kv_area_t> kv_wanted_area(std::string_view keyword, const kv_command_t& command,
                                        int n, const gx_file_gene_recf_t& file);

// "x y " as a user types them.
gx_string_record_t kv_point_text(gx_pointreal_t p);

// Draws the edit and the context viewport again.
void kv_redraw_views();
