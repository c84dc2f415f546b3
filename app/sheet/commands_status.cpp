// What is selected: STAtus OBJect, STAtus NET, STAtus PROperty and SHOw LINk.
#include <algorithm>
#include <array>
#include <string>

#include "app/language/command_row.h"
#include "app/sheet/command_viewport.h"
#include "gx/db/file/object_list.h"
#include "gx/db/owners.h"
#include "gx/db/place/geometry.h"
#include "gx/display/sheet/draw.h"
#include "gx/text/messages/debug.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"

namespace {

constexpr std::string_view nothing_valid = "# !! Warning : Nothing Valid Selected  ? ";

std::optional<kv_view_t> view_to_inspect(std::string_view refused, const kv_command_t& command) {
  return kv_wanted_view(refused, command, 3,
                        {.bad_word = kv_3rd_not_edit_context,
                         .symbol = "# !! You Cannot Status the activate symbol ?  "});
}

void show_handle(int id, std::string_view type) {
  gx_tell("#  OBJect : Handle = ", std::to_string(id), " ;  type = ", type, " ");
}

// --- STAtus OBJect

// The object of a typed id and the objects that own it.
void show_object_and_owners(const gx_file_gene_recf_t& file, int id) {
  constexpr std::array owners = {gx_type::instance, gx_type::symbol, gx_type::pinpropfam,
                                 gx_type::net,      gx_type::frame,  gx_type::pin};
  show_handle(id, gx_type_name(gx_object_id_ptr(file, id).object_type));
  for (int up = gx_object_id_ptr(file, id).father; up > 0; up = gx_object_id_ptr(file, up).father) {
    const auto type = gx_object_id_ptr(file, up).object_type;
    if (std::ranges::find(owners, type) != owners.end()) show_handle(up, gx_type_name(type));
  }
}

bool show_selected_objects(const gx_file_gene_recf_t& file) {
  bool found = false;
  gx_visit_owners(file, [&](const gx_owner_t& owner) {
    if (!gx_inq_object_selected(file, owner.on_sheet)) return;
    switch (owner.kind) {
      case gx_owner_kind::body: {
        const int symbol = gx_instance_info_ptr(file, owner.id).symbol;
        show_handle(owner.id, "INSTANCE ");
        gx_tell("# path = \"", gx_view(gx_symbol_info_ptr(file, symbol).path), "\" ");
        gx_debug(" STATUS_OBJ_CMD  : symbol_id : %d\n", symbol);
        show_handle(symbol, "SYMBOL ");
        break;
      }
      case gx_owner_kind::pin:
        show_handle(owner.id, "PIN (of instance)");
        break;
      case gx_owner_kind::symbol_pin:
        show_handle(owner.id, "PIN (of symbol)");
        break;
      case gx_owner_kind::net:
        show_handle(owner.id, "NET ");
        break;
      case gx_owner_kind::frame:
        show_handle(owner.id, "FRAME ");
        break;
      case gx_owner_kind::symbol:  // shown with its instance
      case gx_owner_kind::none:
        return;
    }
    found = true;
  });
  return found;
}

// --- STAtus NET

bool is_net_selected(const gx_file_gene_recf_t& file, int net) {
  if (gx_inq_object_selected(file, net)) return true;
  for (const int segment : lb_segments(file, net)) {
    if (!gx_inq_object_deleted(file, segment) && gx_inq_object_selected(file, segment)) return true;
  }
  return false;
}

std::string end_text(const gx_file_gene_recf_t& file, std::string_view name, int end) {
  const bool at_pin =
      gx_object_id_ok(file, end) && gx_object_id_ptr(file, end).object_type == gx_type::pinpropfam;
  return std::string(name) + (at_pin ? "_P: " : "  : ") + std::to_string(end) + " ; ";
}

void show_net(const gx_file_gene_recf_t& file, int net) {
  show_handle(net, "NET ");
  for (const int id : lb_segments(file, net)) {
    if (gx_inq_object_deleted(file, id)) continue;
    const auto& segment = gx_segment_info_ptr(file, id);
    gx_tell("# SEGMENT: ", std::to_string(id), " ; ", end_text(file, " VERTEX1", segment.vertex1),
            end_text(file, " VERTEX2", segment.vertex2));
  }
}

// --- STAtus PROperty

// How the properties of each kind of owner are listed: what is before the id and after it,
// and the heading of a new owner.
struct listing_t {
  std::string_view head, place, heading;
};
constexpr listing_t listing_of(gx_owner_kind kind) {
  switch (kind) {
    case gx_owner_kind::body:
      return {"# I_", "  I_BODY ", {}};
    case gx_owner_kind::symbol:
      return {"# S_", " S_BODY ", {}};
    case gx_owner_kind::pin:
    case gx_owner_kind::symbol_pin:
      return {"# P_", " PIN ", " INSTANCE : \""};
    case gx_owner_kind::net:
      return {"# N_", " NET ", " NET : "};
    case gx_owner_kind::frame:
      return {"# F_", " FRAME ", " FRAME : "};
    case gx_owner_kind::none:
      break;
  }
  return {};
}

std::string_view value_or_empty(const gx_object_property_rec_t* property) {
  return property == nullptr ? std::string_view{} : gx_view(property->nvalue);
}

// The line that opens the properties of a pin's instance, a net or a frame.
void show_heading(const gx_file_gene_recf_t& file, const gx_owner_t& owner,
                  const listing_t& listing) {
  if (listing.heading.empty()) return;
  if (owner.inst == 0) {
    return gx_tell(listing.head, std::to_string(owner.id), listing.heading);
  }
  gx_tell("# I_", std::to_string(owner.inst), listing.heading,
          value_or_empty(lb_find_prop_inst(file, owner.inst, "INST")), "\" ");
}

void show_property(const gx_owner_t& owner, const listing_t& listing,
                   const gx_object_property_rec_t& property) {
  gx_tell(listing.head, std::to_string(owner.id), listing.place,
          property.fixed != 0 ? "  Fixed " : "NOFixed ",
          property.visible != 0 ? "  Visible \"" : "NOVisible \"", gx_view(property.name), "\"  \"",
          gx_view(property.nvalue), "\" ");
}

bool show_selected_properties(const gx_file_gene_recf_t& file) {
  bool found = false;
  int headed = 0;  // the instance of pins, the net or the frame whose heading was shown
  gx_visit_owners(file, [&](const gx_owner_t& owner) {
    const bool owner_selected =
        gx_inq_object_selected(file, owner.id) || gx_inq_object_selected(file, owner.on_sheet);
    const auto listing = listing_of(owner.kind);
    gx_visit_properties(file, owner, [&](const gx_object_property_rec_t& property) {
      const bool by_owner = owner_selected && !(kv_pext.smash_done && property.fixed != 0);
      if (!by_owner && !gx_inq_object_selected(file, property.gene.object_id)) return;
      if (!found && kv_pext.smash_done) {
        gx_tell("# Status of Fixed properties ONLY if selected after SMASH ");
      }
      found = true;
      const int heading_id = owner.inst != 0 ? owner.inst : owner.id;
      if (!listing.heading.empty() && headed != heading_id) {
        show_heading(file, owner, listing);
        headed = heading_id;
      }
      show_property(owner, listing, property);
    });
  });
  return found;
}

// --- SHOw LINk

// Where the owner of a property is; nothing when it is nowhere.
std::optional<gx_pointreal_t> place_of_owner(const gx_file_gene_recf_t& file,
                                             const gx_owner_t& owner) {
  switch (owner.kind) {
    case gx_owner_kind::body:
      return lb_inq_inst_origin(file, owner.id);
    case gx_owner_kind::pin:
      return gx_pin_abs_origin(file, owner.id);
    case gx_owner_kind::net: {
      const int segment = gx_inq_first_net_segment_id(file, owner.id);
      if (segment == 0) return std::nullopt;
      return gx_object_abs_origin(file, segment, 0);
    }
    case gx_owner_kind::frame:
      return gx_object_abs_origin(file, owner.id, 0);
    default:
      return std::nullopt;
  }
}

bool show_links(const kv_view_t& view) {
  const auto& file = view.file();
  bool found = false;
  gx_visit_owners(file, [&](const gx_owner_t& owner) {
    if (owner.kind == gx_owner_kind::symbol || owner.kind == gx_owner_kind::symbol_pin) return;
    gx_visit_properties(file, owner, [&](const gx_object_property_rec_t& property) {
      if (!gx_is_selected(property.gene) || gx_is_unvisible(property.gene)) return;
      found = true;
      if (const auto to = place_of_owner(file, owner)) {
        const int id = property.gene.object_id;
        gx_keep_link(view.vpid, gx_object_abs_origin(file, id, owner.inst), *to);
      }
    });
  });
  return found;
}

void kv_status_object_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# STAtus OBJect ";
  const auto view = view_to_inspect(refused, command);
  if (!view) return;
  const auto& file = view->file();
  if (command.count() == 4) {
    const auto id = gx_string_to_int16(command.word(4));
    if (id.error) {
      kv_echo(refused, command, 3);
      return gx_tell_as(gx_line_kind::error, "# !! Error :  4 th  parameter incorrect ? \"",
                        command.word(4), "\" ");
    }
    if (!gx_object_id_ok(file, id.value) || gx_inq_object_deleted(file, id.value)) {
      return kv_refuse(refused, command,
                       "# !! Error :  4 th  parameter incorrect ( object handle Invalid ) ? ", 3);
    }
    show_object_and_owners(file, id.value);
  } else if (!show_selected_objects(file)) {
    return kv_refuse(refused, command, "# !! Error : No Valid Object selected ? ", 3);
  }
  gx_tell(" STAtus OBJect ", view->name());
}

void kv_status_net_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# STAtus NET ";
  const auto view = view_to_inspect(refused, command);
  if (!view) return;
  const auto& file = view->file();
  bool found = false;
  for (const int net : lb_nets(file)) {
    if (gx_inq_object_deleted(file, net) || !is_net_selected(file, net)) continue;
    found = true;
    show_net(file, net);
  }
  if (!found) return kv_refuse(refused, command, "# !! Error : No NET selected ? ", 3);
  gx_tell(" STAtus NET ", view->name());
}

void kv_status_prop_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# STAtus PROperty ";
  const auto view =
      kv_wanted_view(refused, command, 3,
                     {.bad_word = "# !! Error : Invalid Viewport name ( should be Edit/Context) ? ",
                      .no_viewport = "# !! Error : Viewport Invalid ? (cursor position) ",
                      .symbol = "# !! You Cannot Status the activate symbol ?  "});
  if (!view) return;
  if (!show_selected_properties(view->file())) {
    return kv_warn(refused, command, nothing_valid, 3);
  }
  gx_tell(" STAtus PROperty ", view->name());
}

void kv_show_link_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SHOw LINk ";
  const auto view = view_to_inspect(refused, command);
  if (!view) return;
  if (!show_links(*view)) return kv_warn(refused, command, nothing_valid, 3);
  gx_tell(" SHOw LINk ", view->name());
}

void kv_list_object_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# LIST OBJect ";
  if (kv_pext.file_id_cur < 1) return kv_refuse(refused, command, kv_no_sheet, 3);
  if (const auto why = gx_object_list(kv_pext.file_id_cur); !why.empty()) {
    kv_refuse(refused, command, "# !! Error : impossible to write the file : ", 3);
    return gx_tell_detail("# !! ", why);
  }
  kv_echo(" LIST OBJect ", command, 3);
}

constexpr kv_command_row_t status_rows[] = {
    // clang-format off
    {{"LIST", "OBJ"}, "LIST OBJect", kv_list_object_cmd, "# LIST OBJect ", 3},
    {{"STA", "OBJ"}, "STAtus OBJect [Edit or Context [id]]", kv_status_object_cmd, "# STAtus OBJect ", 3},
    {{"STA", "NET"}, "STAtus NET [Edit or Context]", kv_status_net_cmd, "# STAtus NET ", 3},
    {{"STA", "PRO"}, "STAtus PROperty [Edit or Context]", kv_status_prop_cmd, "# STAtus PROperty ", 3},
    {{"SHO", "LIN"}, "SHOw LINk [Edit or Context]", kv_show_link_cmd, "# SHOw LINk ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_status_commands() { return status_rows; }
