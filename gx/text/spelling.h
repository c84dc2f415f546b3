// Names as a drawing shows them, spelled with the letters that a path, a typed line and a netlist
// take; and back.
//
// Letters, digits and _ + - # $ & @ = ^ | [ ] < > ! . : * ? stay. What has a bar above it, which a
// drawn name says as "~{RD}", begins with "~" and ends with another, at the end of the name with
// none unless it is a number: "~{RD}/WR" is "~RD~%2FWR", "~{CS}" is "~CS". Any other byte is "%"
// and two hexadecimal digits. A number after "~" at the end of a spelled name distinguishes it from
// one that was the same as drawn: it is no bar.
#pragma once

#include <string>
#include <string_view>

std::string gx_spelled_name(std::string_view drawn);
// The inverse: of what is no such spelling, the letters as they are.
std::string gx_drawn_name(std::string_view spelled);
