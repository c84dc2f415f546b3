// A store filled by hand, for tests of what is made from it, and a directory for their files.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "expand/output/design_output.h"
#include "expand/store.h"
#include "gx/text/strings.h"
#include "tests/support/scratch_directory.h"

class StoreFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    kv_sext = kv_defref_exp_rec_t{};
    kv_sext.designfile = ::open(design_path.c_str(), O_RDWR | O_CREAT, 0660);
  }
  void TearDown() override {
    ::close(kv_sext.designfile);
    kv_sext = kv_defref_exp_rec_t{};
  }

  // Writes the design as a run does: with the lists that it was made for.
  bool write_design(bool gen_data = false) const {
    kv_sext.kept = kv_sext;
    std::string why;
    return kv_write_design(kv_sext, kv_sext.designfile, gen_data ? dir + "/kivo_data" : "", why);
  }

  // One instance with two pins, a bus of one member, a child of it, a macro with one pin; every
  // kind of property. Every field that the file holds has a value of its own.
  static void fill_store();

  scratch_directory directory;
  const std::string dir = directory.path().string(), design_path = dir + "/design_kv";
};

inline void StoreFixture::fill_store() {
  const auto keep = [](kv_list_t<kv_prop_type_record_t>& list, std::string_view name,
                       std::string_view type) {
    list.entry[static_cast<std::size_t>(list.count++)] = {gx_string(name), gx_string(type)};
  };
  keep(kv_sext.property_instance, "INST", "S");
  keep(kv_sext.property_instance, "SIZE", "Int");
  keep(kv_sext.property_pin, "DELAY", "t");
  keep(kv_sext.property_net, "CAP", "Real");
  kv_sext.time_step = 0.5F;

  const std::int32_t inst_path = kv_save_string("/U1");
  const std::int32_t file_path = kv_save_string("/d/sheet");
  const std::int32_t net_name = kv_save_string("B");
  const std::int32_t first_inst_prop = kv_save_prop_str("U1");
  kv_save_prop_int(-1, 2, 300);
  const std::int32_t pin_prop = kv_save_prop_time(1, 2, 65536);
  const std::int32_t net_prop = kv_save_prop_real(1, -2.5F, 0.125F);

  kv_inst_record_t& inst = kv_sext.insts[kv_sext.insts.append(1)];
  inst.self = 1, inst.object_id = 258, inst.timing_index = 120, inst.sim_path = inst_path;
  inst.file_path = file_path, inst.nb_of_pin = 2, inst.first_pin_ind = 1;
  inst.nb_of_property = 2, inst.first_prop = first_inst_prop;

  for (std::int32_t i = 1; i <= 2; ++i) {
    kv_pin_record_t& pin = kv_sext.pins[kv_sext.pins.append(1)];
    pin.self = i, pin.object_id = static_cast<std::int16_t>(10 + i);
    pin.io_type = i == 1 ? kv_io_in : kv_io_ixo;
    pin.sim_path = inst_path, pin.instance_ind = 1, pin.net_ind = 2;
    pin.nb_of_property = 1, pin.first_prop = pin_prop;
  }
  kv_pin_record_t& pin = kv_sext.pins[1];
  pin.next_pin_in_ind = 2, pin.pin_start = 3, pin.pin_end = 4, pin.pin_net_start = -1;

  kv_sext.nets.append(2);
  kv_net_record_t& bus = kv_sext.nets[1];
  bus.self = 1, bus.object_id = 20, bus.net_type = kv_net_bus, bus.net_kind = kv_kind_bus;
  bus.name = net_name, bus.sim_path = inst_path, bus.net_bus_start = 7, bus.net_bus_end = 7;
  bus.netind_start = 2, bus.first_sub_net = 2, bus.nb_of_property = 1, bus.first_prop = net_prop;
  kv_net_record_t& net = kv_sext.nets[2];
  net.self = 2, net.object_id = 21, net.net_type = kv_net_sub, net.net_kind = kv_kind_global;
  net.name = net_name, net.sim_path = inst_path, net.nb_of_child = 1, net.first_child = 1;
  net.nb_pin_in = 2, net.first_pin_in_ind = 1, net.nb_pin_out = 1, net.first_pin_out_ind = 2;
  net.state_init = 17, net.cur_state = {18, 5, 1}, net.old_state = {19, 6, 1};
  net.bus = 1, net.posinbus = 9, net.father_net = 1;

  kv_net_child_record_t& child = kv_sext.net_childs[kv_sext.net_childs.append(1)];
  child.self = 1, child.sim_path = inst_path, child.object_id = 30, child.name = net_name;
  child.net_kind = kv_kind_child;

  kv_macro_record_t& macro = kv_sext.macros[kv_sext.macros.append(1)];
  macro.self = 1, macro.object_id = 40, macro.timing_index = 3, macro.sim_path = inst_path;
  macro.file_path = file_path, macro.nb_of_pin = 1, macro.first_pin_ind = 1;
  macro.nb_of_property = 2, macro.first_prop = first_inst_prop;

  kv_pinm_record_t& pinm = kv_sext.pinms[kv_sext.pinms.append(1)];
  pinm.self = 1, pinm.object_id = 50, pinm.sim_path = inst_path, pinm.macro_ind = 1;
  pinm.net_ind = 2, pinm.pin_start = 1, pinm.pin_end = 2, pinm.pin_net_start = 3;
  pinm.nb_of_property = 1, pinm.first_prop = pin_prop;

  kv_general_info_record_t& info = kv_sext.general_info;
  info.day = 1, info.month = 2, info.year = 2024, info.software_revision = 1.0F;
  info.nbof_prop_instance = 2, info.nbof_prop_pin = 1, info.nbof_prop_net = 1;
  info.nbof_char = kv_sext.chars.count, info.nbof_string = kv_sext.strings.count;
  info.nbof_prop = kv_sext.props.count, info.nbof_instance = kv_sext.insts.count;
  info.nbof_pin = kv_sext.pins.count, info.nbof_net = kv_sext.nets.count;
  info.nbof_net_child = kv_sext.net_childs.count, info.nbof_pinm = kv_sext.pinms.count;
  info.nbof_macro = kv_sext.macros.count, info.time_step = kv_sext.time_step;
  info.num_errors = 3, info.num_warnings = 4;
}
