// A drawing of another editor, as plain records: what every reader fills and the one builder
// (import/build/builder.h) turns into symbol and sheet files.
//
// A reader works in two stages: from the file to records of its format, then from those to these.
// The second stage settles what the format means: which net each pin and each piece of wire is on,
// single bits of buses, single instances of vectors, which names are ports and globals. The builder
// knows no format: it cuts wires where they meet, sets junction dots, makes names fit, keeps page
// and limits, and writes.
//
// Places and lengths are design units (5000 = one grid step), x to the right, y downwards; a reader
// scales its units so that pins fall on the grid. They must lie within -gxm_furthest..gxm_furthest;
// where on the page the drawing goes is the builder's choice. Texts may hold any bytes: UTF-8 is
// taken, the builder keeps it (gx/text/kept_text.h) and shortens what is too long, with a warning.
#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "deck/deck_file.h"
#include "gxmake/description.h"

// --- graphics: the shapes of gxmake/description.h. A polyline may have any number of points here.

enum class gxi_align : std::uint8_t { start, middle, end };

// How a text lies. Unturned, `across` says which point of each line is at `at` (start: the left
// end), `up` which height of the whole text (start: the baseline of its last line, end: the top of
// the first line's capitals); `rotate` quarter turns counterclockwise about `at` follow. The
// builder keeps the text readable: one that would be upside down, or mirrored by its instance,
// takes the same box the readable way round.
struct gxi_look_t {
  gx_pointreal_t at{};
  std::int32_t height = gxm_text_height;  // of a capital letter; a letter is 1.2 times as wide
  std::int32_t line_step = 0;             // from a line to the next; 0: 1.6 times the height
  gxi_align across = gxi_align::start, up = gxi_align::start;
  bool flush = false;       // the lines begin one below the other: `across` is of the longest
  std::uint8_t rotate = 0;  // 0..3
  std::uint8_t color = gxm_white;
};

// A text of its own. Lines are parted by newlines; the following ones lie below the first.
struct gxi_text_t {
  std::string value{};
  gxi_look_t look{};
};

// Hidden without a look.
struct gxi_property_t {
  std::string name{}, value{};
  std::optional<gxi_look_t> look{};
};

// --- symbols. Everything in coordinates of the symbol.

struct gxi_pin_t {
  std::string name{};  // PIN: unique in the symbol, letter case ignored (the builder sees to it)
  std::string type{"IO"};  // PINTYPE: IN, OUT or IO
  gx_pointreal_t at{};
  std::optional<gxi_look_t> name_look{};  // shows the name
  std::vector<gxi_property_t> properties{};
};

struct gxi_symbol_t {
  std::string name{};  // for messages and for the name of a cell without a sheet
  gxm_source_t source{};
  std::vector<gxm_shape_t> shapes{};
  std::vector<gxi_text_t> texts{};
  // The same for all instances, which give none of these names.
  std::vector<gxi_property_t> properties{};
  // Hidden, of each instance that does not give its own.
  std::vector<gxi_property_t> defaults{};
  std::vector<gxi_pin_t> pins{};
};

// --- sheets

enum class gxi_kind : std::uint8_t { part, port, global };

// Placed as follows: the symbol is mirrored left to right when `mirror`, then turned by `rotate`
// quarter turns counterclockwise, then moved to `at`.
struct gxi_instance_t {
  gxi_kind kind = gxi_kind::part;
  // Of a part INST, unique on the sheet (the builder sees to it); of a port the name of the cell's
  // pin; of a global its name in the whole design.
  std::string name{};
  std::optional<gxi_look_t> name_look{};
  int symbol = 0;  // of gxi_design_t::cells
  gxm_source_t source{};
  gx_pointreal_t at{};
  std::uint8_t rotate = 0;
  bool mirror = false;
  bool drawn = true;  // false: nobody drew it, its place says nothing
  // Looks are absolute, as the text is seen on the sheet. A property may be empty.
  std::vector<gxi_property_t> properties{};
  // Of each pin of the symbol, in its order: a net of the sheet, -1: joined to nothing.
  std::vector<int> nets{};
  std::string deck{};  // its lines in a deck (deck/deck_file.h); "": those that its properties give
};

struct gxi_segment_t {
  gx_pointreal_t from{}, to{};
  std::uint8_t color = gxm_cyan;
  std::uint8_t width = 1;
};

// One electrical net: all that is joined on the sheet, by wires, by touching, or by name. Two nets
// of a sheet never have the same name. Wires of a net may end at, or run over, its own pins and
// wires: the builder cuts and joins them. Wires of different nets may cross.
struct gxi_net_t {
  std::string name{};                     // NET; empty for a net without a name
  std::optional<gxi_look_t> name_look{};  // absolute; further labels are texts of the sheet
  gxm_source_t source{};
  // Not empty: the net is this pin of the cell (`port_type` as in gxi_pin_t), or this net of the
  // whole design. The builder adds what is needed where no instance says it.
  std::string port{}, port_type{"IO"};
  std::string global{};
  std::vector<gxi_property_t> properties{};  // absolute
  std::vector<gxi_segment_t> segments{};
};

struct gxi_sheet_t {
  gxm_source_t source{};
  std::vector<gxi_instance_t> instances{};
  std::vector<gxi_net_t> nets{};
  // What is drawn without being joined: title blocks, buses that are only drawn, notes.
  std::vector<gxm_shape_t> shapes{};
  std::vector<gxi_text_t> texts{};
};

// What a symbol file and, where there is one, a sheet file are made of.
struct gxi_cell_t {
  std::string name{};  // of the directory; made unique and fit by the builder
  gxi_symbol_t symbol{};
  std::optional<gxi_sheet_t> sheet{};
  // Texts that a simulator wants and nobody draws; kept beside the sheet in notes.txt.
  std::string notes{};
  dk_cell_t deck{};  // without instances, which have their lines themselves
};

// A text file of the design directory that only this format needs.
struct gxi_beside_t {
  std::string name{}, text{};
};

struct gxi_design_t {
  std::vector<gxi_cell_t> cells{};  // none contains itself; a cell may come before what it uses
  int top = 0;
  // Properties to keep, the most wanted first; the builder keeps as many as an expansion can.
  std::vector<std::string> kept_of_instances{}, kept_of_pins{}, kept_of_nets{};
  std::vector<std::string> parameters{};  // properties that blocks hand down
  // An instance that has this property is a primitive.
  std::string primitive{"CLASS"};
  std::vector<gxi_beside_t> beside{};
  gxm_messages_t warnings{};        // what was read otherwise than drawn, or left out
  std::set<std::string> missing{};  // symbols that are in none of the directories
  std::vector<std::string> searched{};
  std::list<std::string> files{};  // the names that sources point to: a design is moved, not copied
};
