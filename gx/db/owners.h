// Walking everything that has properties on a sheet, in one order for all commands: instances
// (their own properties, those of their symbol, their pins), then nets, then frames. Deleted
// objects are left out.
#pragma once

#include "gx/db/object_access.h"
#include "gx/db/queries.h"

enum class gx_owner_kind : std::int16_t { none, body, symbol, pin, symbol_pin, net, frame };

struct gx_owner_t {
  gx_owner_kind kind = gx_owner_kind::none;
  int id = 0;    // instance, symbol, pinpropfam, pin, net or frame
  int inst = 0;  // the instance it is met through; 0 for nets and frames
  // What stands for it on the sheet: of a symbol the instance, of a symbol's pin the pinpropfam, of
  // the others the owner itself.
  int on_sheet = 0;
};

// Calls visit(owner) for every live owner.
template <typename Visit>
void gx_visit_owners(const gx_file_gene_recf_t& file, Visit visit) {
  for (const int inst : lb_instances(file)) {
    if (gx_inq_object_deleted(file, inst)) continue;
    visit(gx_owner_t{gx_owner_kind::body, inst, inst, inst});
    const int symbol = gx_instance_info_ptr(file, inst).symbol;
    if (!gx_inq_object_deleted(file, symbol))
      visit(gx_owner_t{gx_owner_kind::symbol, symbol, inst, inst});
    for (const auto [pin, pinpropfam] : lb_pins(file, inst)) {
      visit(gx_owner_t{gx_owner_kind::pin, pinpropfam, inst, pinpropfam});
      visit(gx_owner_t{gx_owner_kind::symbol_pin, pin, inst, pinpropfam});
    }
  }
  for (const int net : lb_nets(file)) {
    if (!gx_inq_object_deleted(file, net)) visit(gx_owner_t{gx_owner_kind::net, net, 0, net});
  }
  for (const int frame : lb_frames(file)) {
    if (!gx_inq_object_deleted(file, frame))
      visit(gx_owner_t{gx_owner_kind::frame, frame, 0, frame});
  }
}

// Calls visit(property record) for every live property of an owner, in child order.
template <typename Visit>
void gx_visit_properties(const gx_file_gene_recf_t& file, const gx_owner_t& owner, Visit visit) {
  const auto each = [&](const auto& ids) {
    for (const int id : ids) {
      const auto& object = gx_object_id_ptr(file, id);
      if (object.object_type == gx_type::property_2d && !gx_inq_object_deleted(file, id)) {
        visit(gx_property_info_ptr(file, id));
      }
    }
  };
  switch (owner.kind) {
    case gx_owner_kind::body:
      return each(lb_inst_properties(file, owner.id));
    case gx_owner_kind::symbol:
      return each(lb_symbol_properties(file, owner.id));
    case gx_owner_kind::pin:
    case gx_owner_kind::symbol_pin:
      return each(gx_children(file, owner.id));
    case gx_owner_kind::net:
      return each(lb_net_properties(file, owner.id));
    case gx_owner_kind::frame:
      return each(lb_frame_properties(file, owner.id));
    case gx_owner_kind::none:
      return;
  }
}
