// The constructors of the objects of the hierarchy, inside the bracket (bracket.h). For editors and
// for gxmake; KIVO itself only reads.
#pragma once

#include <string_view>

#include "gx/edit/bracket.h"

// --- objects that hold nothing of their own; `type` is one of the 17 below
void gx_plain(gx_type type);
inline void gx_main() { gx_plain(gx_type::main); }
inline void gx_page() { gx_plain(gx_type::page); }
inline void gx_component_family() { gx_plain(gx_type::component_family); }
inline void gx_instance_family() { gx_plain(gx_type::instance_family); }
inline void gx_symbol_family() { gx_plain(gx_type::symbol_family); }
inline void gx_net_family() { gx_plain(gx_type::net_family); }
inline void gx_component() { gx_plain(gx_type::component); }
inline void gx_bodpropfam() { gx_plain(gx_type::bodpropfam); }
inline void gx_vertex_family() { gx_plain(gx_type::vertex_family); }
inline void gx_body() { gx_plain(gx_type::body); }
inline void gx_pin_family() { gx_plain(gx_type::pin_family); }
inline void gx_tag_family() { gx_plain(gx_type::tag_family); }
inline void gx_frame_family() { gx_plain(gx_type::frame_family); }
inline void gx_frame() { gx_plain(gx_type::frame); }
inline void gx_pin() { gx_plain(gx_type::pin); }
inline void gx_graphics() { gx_plain(gx_type::graphics); }
inline void gx_property_family() { gx_plain(gx_type::property_family); }

// --- objects of a sheet
void gx_symbol(std::string_view path);
// The instance becomes the head of the chain of its symbol, whose path must end in a version.
void gx_instance(int symbol, int rotate, bool fliph);
void gx_pinpropfam();
void gx_net();
