// What the rooms of one flattening share: the sheets, the flat nets of the visits under way, and
// the place in the hierarchy.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "expand/origins.h"
#include "expand/run/run_watch.h"
#include "expand/sheet/sheet_entry.h"
#include "gx/text/messages/session_state.h"

// The flat net that an equipotential of a visited sheet has.
struct kv_flat_t {
  std::int32_t net = 0;       // index in the store, 0: none yet
  std::int32_t position = 0;  // on a bus: the member that the sheet's first member is
  std::int32_t width = 0;     // members of the sheet's bus, 0: no bus
  bool by_port = false;       // it came from the sheet above
  bool by_master = false;     // it has the id, name and path of the master net here
};

// A simulation path that grows and shrinks with the walk. Every path is a string of the store, so
// none may be longer than such a string.
struct kv_path_t {
  std::array<char, kv_max_string> chars{};
  std::int32_t len = 0;
  std::string_view view() const { return {chars.data(), static_cast<std::size_t>(len)}; }
};

struct kv_flatten_t {
  kv_flatten_t(const kv_setup_t& the_setup, kv_design_t& the_design, kv_sheets_t& the_sheets,
               std::int16_t& level, std::int32_t& macro)
      : setup(the_setup),
        design(the_design),
        sheets(the_sheets),
        expand_level(level),
        macro_level(macro),
        errors_before(gx_session.errors_in_all) {}

  const kv_setup_t& setup;
  kv_design_t& design;
  kv_sheets_t& sheets;
  std::int16_t& expand_level;  // of the sheet being visited
  std::int32_t& macro_level;   // its macro, 0 at the top
  std::int64_t errors_before;  // counted before the run
  bool to_the_end = false;     // however many errors there are
  kv_run_watch* watch = nullptr;
  std::vector<kv_visit_t>* visits = nullptr;  // to be kept; null: they are not
  std::int32_t visit = -1;                    // under way
  std::vector<kv_flat_t> flats;               // those of a sheet follow those of the sheet above it
  kv_path_t path;                             // of the object being saved
  std::optional<kv_run_result> end;           // why the run cannot go on
};

// Appends a piece to the path for the life of the object. Where the path would be too long the run
// ends, with the path reported: the piece is then left out.
class kv_path_step {
 public:
  kv_path_step(kv_flatten_t& run, std::string_view piece);
  ~kv_path_step() { run_.path.len = len_before_; }
  kv_path_step(const kv_path_step&) = delete;
  kv_path_step& operator=(const kv_path_step&) = delete;

 private:
  kv_flatten_t& run_;
  std::int32_t len_before_;
};

// Ends the run because a name or path is longer than a string of the store.
void kv_end_at_long_path(kv_flatten_t& run, std::string_view path, std::string_view piece);
