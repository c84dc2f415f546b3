// Lines of leaf instances, from the file "deck" or else from their properties.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "deck/write/deck.h"
#include "deck/write/visits.h"

// How names are made where the lines are written.
struct dk_naming_t {
  // Of an element of the sheet in view, which must begin with the letter of the device.
  std::function<std::string(std::string_view letter, std::string_view name)> element;
  std::function<std::string(std::int32_t)> node;  // of a flat net
  // Of bit `bit` of a pin; used for all pins.
  std::function<std::string(kv_object_t pin, std::int32_t bit)> node_of_pin;
};

class dk_elements_t {
 public:
  dk_elements_t(const dk_visits_t& visits, const dk_options_t& options, const dk_output_t& output,
                dk_naming_t naming);

  // What follows is drawn in this visit, or in a part of it.
  void look_at(std::int32_t visit) { visit_ = visit; }
  // Writes the lines of a leaf instance; false when it is left out.
  bool write(std::int32_t inst);
  // The same as text, without its name and nodes: what a leaf differs by.
  std::string values_of(std::int32_t inst);
  // A statement whose nodes and devices are those of the visit.
  void write_local(const std::string& statement);
  // " n1 n2": the nodes of all pins.
  std::string nodes_of(kv_object_t owner) const;
  // The .save lines of what was written.
  void write_saved();
  void write_lines(std::string_view lines);

 private:
  bool write_plain(std::int32_t inst);
  void add_plain_values(kv_object_t inst, std::string& line) const;
  std::optional<std::string> parameter(std::string_view name) const;
  std::string called(const dk_drawn_t& drawn, const dk_line_t& line) const;
  void save(std::string_view element, std::string_view line);
  std::string node_named(std::string_view name) const;
  std::string device_named(std::string_view name) const;

  const dk_visits_t& visits_;
  const dk_options_t& options_;
  const dk_output_t& output_;
  dk_naming_t naming_;
  dk_names_t names_;
  std::int32_t visit_ = 0;
  kv_object_t current_{};
  const dk_line_t* call_ = nullptr;    // the line in work, when it calls a subcircuit
  const dk_piece_t* piece_ = nullptr;  // and the piece of it
  bool is_xspice_ = false;  // the line in work is of a device to which the node "null" is none
  std::string line_;
  std::vector<std::string> saved_;
};
