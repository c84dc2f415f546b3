// The answers of a batch as JSON: one object in a line for each command line.
//
//   {"command": "find path /XR", "status": 0,
//    "lines": [{"kind": "plain", "text": " FINd PATh /XR  block I_4 "}],
//    "records": [{"type": "place", "path": "/XR", "what": "block", "handle": "I_4"}]}
#pragma once

#include <string>
#include <string_view>

#include "gx/text/messages/front.h"

// Takes the records of commands from now on.
void kv_begin_json();
// A line of the answer under way.
void kv_take_json_line(std::string_view line, gx_line_kind kind);
// The object of what was taken since the last one, with its line end.
std::string kv_end_json_answer(std::string_view command, bool is_fault);
