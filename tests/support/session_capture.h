// A session without a window: commands run, and the lines they answer are read back.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/language/interpreter.h"
#include "expand/store.h"
#include "gx/display/window.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

class session_capture {
 public:
  session_capture() {
    gx_reset_state();
    kv_pext = {};
    kv_sext = kv_defref_exp_rec_t{};
    gx_init_nograph();
    gx_vext.cursessfile = std::tmpfile();
  }
  ~session_capture() {
    std::fclose(gx_vext.cursessfile);
    gx_vext.cursessfile = nullptr;
  }

  // The lines that a command line answers.
  std::vector<std::string> run(std::string_view line) {
    kv_process_command(gx_string(line), args, vars);
    return take();
  }

  // The lines shown since the last call.
  std::vector<std::string> take() {
    std::fseek(gx_vext.cursessfile, taken_, SEEK_SET);
    std::vector<std::string> lines;
    std::string line;
    for (int c; (c = std::fgetc(gx_vext.cursessfile)) != EOF;) {
      if (c == '\n') {
        lines.push_back(std::exchange(line, {}));
      } else {
        line += static_cast<char>(c);
      }
    }
    taken_ = std::ftell(gx_vext.cursessfile);
    return lines;
  }

  kv_array_param_t args, vars;

 private:
  long taken_ = 0;
};
