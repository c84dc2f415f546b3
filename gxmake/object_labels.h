// Names for the objects of a file, for its text: what an object is known by on the sheet, so that
// a change elsewhere leaves it. Two objects never have the same one.
#pragma once

#include <map>
#include <set>
#include <string>

#include "gx/db/file/file_records.h"

class gxm_labels {
 public:
  explicit gxm_labels(const gx_file_gene_recf_t& file) : file_(file) {}

  // The label of an object of the file, made when it is asked for first.
  const std::string& of(int id);
  bool has(int id) const { return labels_.contains(id); }

 private:
  std::string known_by(int id);
  std::string instance(int id);
  std::string pin(int id);
  std::string net(int id);

  const gx_file_gene_recf_t& file_;
  std::map<int, std::string> labels_;
  std::set<std::string> taken_;
};
