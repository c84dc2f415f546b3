// What the rules of a sheet share: the report they fill, the names they have met, and the rules
// that are the same for every kind of object.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/check/sheet/check_rules.h"

// The names of one kind in the order they were met.
// The views are those of the sheet's own records.
struct kv_check_table_t {
  std::size_t most;  // names
  std::vector<std::string_view> names = {};
  std::vector<gx_owner_t> owners = {};  // of each name
  bool overflowed = false;

  // False when this is the first name that finds the table full.
  bool add(std::string_view name, const gx_owner_t& owner) {
    if (names.size() < most) {
      names.push_back(name);
      owners.push_back(owner);
      return true;
    }
    const bool first = !overflowed;
    overflowed = true;
    return !first;
  }
  void clear() {
    names.clear();
    owners.clear();
    overflowed = false;
  }
};

// Two entries of a table with one name, letters in either case: the first of that name and the one
// after it.
struct kv_same_name_t {
  std::size_t first, second;
};
// One for each name that occurs again, in the order of their first entries.
std::vector<kv_same_name_t> kv_same_names(const kv_check_table_t& table);

// One run of the rules over a sheet.
struct kv_sheet_check_t {
  const gx_file_gene_recf_t& file;
  kv_links_t& links;
  std::size_t most_names;
  kv_sheet_report_t report = {};
  kv_check_table_t port_names{most_names}, instance_names{most_names}, net_names{most_names},
      frame_names{most_names};

  kv_sheet_finding_t& add(kv_rule rule, const gx_owner_t& where,
                          std::vector<kv_check_line_t> lines) {
    return report.findings.emplace_back(kv_sheet_finding_t{rule, where, std::move(lines)});
  }
};

// A property that an object may have once. `extra` is what is said of a second one.
struct kv_once_t {
  kv_rule rule;
  std::string_view name, extra;
};

// How the findings of one kind of object are worded.
struct kv_wording_t {
  kv_rule same_name_rule;
  std::string_view too_many, same_name;
  std::string_view label;  // "I_"
  bool place_on_own_line;
};

// The properties met on one object.
class kv_object_check {
 public:
  kv_object_check(kv_sheet_check_t& check, const kv_wording_t& wording, const gx_owner_t& where)
      : check_(check), wording_(wording), where_(where), names_{check.most_names} {}

  // A finding of the object: the words, and where it is.
  kv_sheet_finding_t& add(kv_rule rule, std::string_view words);
  void add_name(const gx_object_property_rec_t& property);
  // Whether the property is the one that an object may have once, and its first. `seen` keeps it.
  bool is_first(const kv_once_t& once, const gx_object_property_rec_t& property,
                const gx_object_property_rec_t*& seen);
  // The finding, null when no two properties have one name.
  kv_sheet_finding_t* report_same_names();

 private:
  kv_sheet_check_t& check_;
  const kv_wording_t& wording_;
  gx_owner_t where_;
  kv_check_table_t names_;
};

void kv_check_instances(kv_sheet_check_t& check);
void kv_check_nets(kv_sheet_check_t& check);
void kv_check_frames(kv_sheet_check_t& check);
