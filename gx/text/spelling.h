// Names as a drawing shows them, spelled with the letters that a path, a typed line and a netlist
// take; and back.
//
// Letters, digits and _ + - # $ & @ = ^ | [ ] < > ~ stay. "!" begins and ends what has a bar above
// it
// ("~{RD}/WR" as drawn is "!RD!%2FWR"; a bar to the end of the name is not ended), any other byte
// is "%" and two hexadecimal digits. What names of other editors write for a bar, "~{...}", is how
// a drawn name says it here.
#pragma once

#include <string>
#include <string_view>

std::string gx_spelled_name(std::string_view drawn);
// The inverse: of what is no such spelling, the letters as they are.
std::string gx_drawn_name(std::string_view spelled);
