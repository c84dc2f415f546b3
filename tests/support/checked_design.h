#pragma once

#include <functional>
#include <string>

#include "app/check/rules.h"
#include "expand/store.h"
#include "tests/support/design_session.h"

inline const std::string faults = KIVO_SOURCE_DIR "/examples/faults/";

// A design of a few symbols, checked by CHEck DESign.
struct checked {
  explicit checked(
      std::string_view sheets,
      const std::function<void(design_session::files_t&)>& change = [](auto&) {})
      : s(symbols() + std::string(sheets), "top", change) {
    kv_sext = kv_defref_exp_rec_t{};
    s.run("primitive CLASS");
  }
  ~checked() { kv_sext = kv_defref_exp_rec_t{}; }

  static std::string symbols() {
    return "symbol buf\n pin I 0,0 IN\n pin O 4,0 OUT\n prop CLASS=U\n"
           "symbol untyped\n pin A 0,0\n pin B 4,0\n prop CLASS=U\n"
           "symbol res\n pin 1 0,0 IXO\n pin 2 4,0 IXO\n prop CLASS=R\n"
           "symbol vdd\n pin P 0,0 IXO\n prop CLASS=G GLOBAL=VDD\n"
           "symbol gnd\n pin P 0,0 IXO\n prop CLASS=G GLOBAL=GND\n"
           "symbol in\n pin P 0,0 IXO\n prop CLASS=PORTIN\n"
           "symbol out\n pin P 0,0 IXO\n prop CLASS=PORTOUT\n";
  }
  // "rule path", without those that no test here is about.
  lines_t findings() {
    s.run("check design");
    lines_t lines;
    for (const auto& finding : kv_pext.findings) {
      const auto name = std::string(kv_row_of(finding.rule).name);
      if (name != "pintype-missing") lines.push_back(name + " " + finding.path);
    }
    return lines;
  }

  design_session s;
};
