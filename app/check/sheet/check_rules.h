// The rules of CHEck SHEet: what the property vocabulary asks of instances, pins, nets and frames.
// They only report findings; a command decides what to do with them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/check/rules.h"
#include "gx/db/file/file_records.h"
#include "gx/db/file/link_file.h"
#include "gx/db/owners.h"

// What CHEck SHEet selects of a finding: the object, the properties under it, or the whole net.
struct kv_mark_t {
  enum kind_t : std::uint8_t { object, properties, net } kind;
  int id;
};

// How CHEck SHEet begins a line: the first one of a finding, its place, what else it says.
enum class kv_check_head : std::uint8_t { error, warning, soft_warning, place, more, item };
struct kv_check_line_t {
  kv_check_head head;
  std::string words;
};

struct kv_sheet_finding_t {
  kv_rule rule;
  gx_owner_t where;  // an instance, one of its pins, a net, a frame; none: the sheet
  std::vector<kv_check_line_t> lines;
  std::vector<kv_mark_t> marks = {};
  bool is_further = false;  // repeats an error already reported; CHEck SHEet shows the first
  int more = 0;             // further names that are reported with this one
};

// All that CHEck SHEet says of a finding, in one line without heads.
std::string kv_words_of(const kv_sheet_finding_t& finding);

struct kv_symbol_reference_t {
  int symbol;
  std::string_view path;  // the sheet's own
};

struct kv_sheet_report_t {
  std::vector<kv_sheet_finding_t> findings;
  std::vector<kv_symbol_reference_t>
      references;  // of each instance whose symbol is as it should be
};

// The references from symbols to their files, looked up once each.
using kv_links_t = std::unordered_map<std::string, gx_link_test_t>;

// How many names of a kind CHEck SHEet compares.
inline constexpr std::size_t kv_names_compared = 999;

// All rules over a sheet that is whole (gx_sheet_fault). Changes nothing. More names of a kind than
// `most_names` are a finding.
kv_sheet_report_t kv_check_sheet(const gx_file_gene_recf_t& file, kv_links_t& links,
                                 std::size_t most_names);

// "I_12 ".
std::string kv_label(std::string_view kind, int id);
