// Which variables of a file of results belong to which nets and devices of a design
// (docs/results.md has the rule).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/find/expanded.h"
#include "results/names.h"

// The place of a variable in its plot; of ground, which no file has, kv_ground.
using kv_variable_t = std::uint32_t;
inline constexpr kv_variable_t kv_ground = UINT32_MAX;

// A value that the file has of a device.
struct kv_device_value_t {
  std::int32_t inst = 0;  // leaf instance of the design
  kv_variable_t variable = 0;
  std::string parameter;  // "id", "gm"; names of what is inside the device before it: "m0.gm"
};

struct kv_matches_t {
  struct net_t {
    std::int32_t net = 0;
    kv_variable_t variable = 0;
  };
  std::vector<net_t> nets;                  // by net, each once
  std::vector<kv_device_value_t> devices;   // by instance, in the order of the file
  std::vector<kv_variable_t> idle;          // neither; the scale and expressions are not there
  std::size_t of_nets = 0, of_devices = 0;  // names that meet one

  // The variable of a flat net; nothing when the file has none.
  const kv_variable_t* of_net(std::int32_t net) const;
  std::span<const kv_device_value_t> of_device(std::int32_t inst) const;
};

kv_matches_t kv_match(const kv_expanded_t& expanded, std::span<const rs_variable_t> variables);
