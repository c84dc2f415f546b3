// Which nets of a sheet are one equipotential.
//
// Nets join when segments of both end on the same vertex or pin, when a vertex or pin that names
// one net ends a segment of the other, when they have the same name, and when ports of one name are
// on them (letter case ignored). A port's name is no name of its net: a net elsewhere on the sheet
// that happens to have it is not joined.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "gx/db/file/file_records.h"
#include "gx/db/ids.h"

// A port on a net.
struct kv_port_name_t {
  std::int32_t net = 0;  // position in the list of nets
  std::string_view name;
};

// What made two nets one.
enum class kv_join_why : std::uint8_t { vertex, name, port_name };
struct kv_join_t {
  std::int32_t a = 0, b = 0;  // positions in the list of nets
  gx_object_id_t object = 0;  // that both are on; 0: none
  kv_join_why why = kv_join_why::vertex;
  bool is_pin = false;  // the object is the pin of an instance
};

struct kv_net_groups_t {
  std::vector<std::int32_t> group_of_net;     // per net; groups are numbered by their first net
  std::vector<std::int32_t> master_of_group;  // the first net with a name, else the first net
  std::vector<kv_join_t> joins;  // that lead from any net of a group to any other in one way
};

// The nets of a sheet and, for every object, the net that it stands for.
class kv_net_table {
 public:
  kv_net_table(const gx_file_gene_recf_t& file, std::span<const gx_object_id_t> nets);

  // Position of the net that a vertex or pin property family is on: the one it names, else the
  // one whose segment ends there; -1 when there is none.
  std::int32_t net_at(int vertex_or_pin) const;

  kv_net_groups_t join(std::span<const std::string_view> names,
                       std::span<const kv_port_name_t> port_names);

 private:
  std::int32_t named_by(int vertex_or_pin) const;
  std::int32_t root(std::int32_t net);
  void unite(std::int32_t a, std::int32_t b, kv_join_why why, int object = 0);
  void take_segment(std::int32_t net, int segment);

  const gx_file_gene_recf_t& file_;
  std::size_t nb_of_net_;
  std::vector<std::int32_t> position_;  // by object id: of a net; -1 for other objects
  std::vector<std::int32_t> end_of_;    // by object id: the net whose segment ends there first
  std::vector<std::int32_t> parent_;    // union-find, the smallest position is the root
  std::vector<kv_join_t> joins_;
};
