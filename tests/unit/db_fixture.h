// An empty file in slot 1, and short ways to build objects in it.
#pragma once

#include <vector>

#include "gx/db/file_slots.h"
#include "gx/db/ids.h"
#include "gx/db/object_access.h"
#include "gx/db/queries.h"
#include "gx/display/window.h"
#include "gx/edit/hierarchy.h"
#include "gx/edit/primitives.h"
#include "gx/text/strings.h"
#include "gx/vext.h"
#include "tests/support/scratch_directory.h"

class empty_file {
 public:
  empty_file() {
    gx_reset_state();
    gx_init_nograph();
    index = gx_file_open(directory_.path().string(), "sheet");
  }
  ~empty_file() { gx_reset_state(); }

  gx_file_gene_recf_t& file() const { return gx_ptrto_gene_file_buf(index); }

  // An object of the type inside the bracket that is open; `fill` makes it and its children.
  template <typename Fill>
  gx_object_id_t make(gx_type type, gx_pointreal_t at, Fill fill) const {
    const auto id = gx_object_create(index, type, at.x, at.y);
    fill();
    gx_object_close(index, id);
    return id;
  }
  gx_object_id_t make(gx_type type) const {
    return make(type, {}, [type] {
      if (type == gx_type::net) return gx_net();
      if (type == gx_type::pinpropfam) return gx_pinpropfam();
      gx_plain(type);
    });
  }
  // The same with children.
  template <typename Children>
  gx_object_id_t make_with(gx_type type, Children children, gx_pointreal_t at = {}) const {
    return make(type, at, [&] {
      if (type == gx_type::net)
        gx_net();
      else
        gx_plain(type);
      children();
    });
  }
  gx_object_id_t property(std::string_view name, std::string_view value, gx_pointreal_t at = {},
                          const gx_property_look_t& look = {}) const {
    return make(gx_type::property_2d, {}, [&] { gx_property_2dreal(name, value, at, look); });
  }
  gx_object_id_t rectangle(gx_pointreal_t a, gx_pointreal_t b) const {
    return make(gx_type::rectangle_2d, {}, [&] { gx_rectangle_2dreal(0, 1, a, b, false, 1); });
  }
  gx_object_id_t symbol(gx_pointreal_t corner, gx_pointreal_t pin_at) const {
    return make(gx_type::symbol, {}, [&] {
      gx_symbol("lib/symbol.gx_3");
      make_with(gx_type::body, [&] {
        make_with(gx_type::graphics, [&] { rectangle({}, corner); });
        make_with(gx_type::property_family, [&] { property("VALUE", "1k", {100, 0}); });
      });
      make_with(gx_type::pin_family, [&] {
        make_with(
            gx_type::pin, [&] { property("PIN", "1"); }, pin_at);
      });
    });
  }
  gx_object_id_t instance(int symbol_id, gx_pointreal_t at, int rotate, bool fliph,
                          gx_pointreal_t pin_at) const {
    return make(gx_type::instance, at, [&] {
      gx_instance(symbol_id, rotate, fliph);
      make_with(gx_type::bodpropfam, [&] { property("INST", "U1", {0, 200}); });
      make_with(gx_type::pin_family,
                [&] { make(gx_type::pinpropfam, pin_at, [] { gx_pinpropfam(); }); });
    });
  }

  gx_file_index_t index = 0;

 private:
  scratch_directory directory_;
};

// The ids of a range, for comparison with a list.
template <typename Range>
std::vector<int> ids_of(const Range& range) {
  std::vector<int> ids;
  for (const int id : range) ids.push_back(id);
  return ids;
}

inline std::ostream& operator<<(std::ostream& out, const gx_boundsreal_t& b) {
  return out << '(' << b.xmin << ' ' << b.ymin << ' ' << b.xmax << ' ' << b.ymax << ')';
}
inline std::ostream& operator<<(std::ostream& out, const gx_pointreal_t& p) {
  return out << '(' << p.x << ' ' << p.y << ')';
}
