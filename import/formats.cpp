#include "import/formats.h"

#include <algorithm>

#include "import/kicad/reader.h"
#include "import/lepton/reader.h"
#include "import/xschem/reader.h"

namespace {

constexpr gxi_format_t formats[] = {
    {"xschem", "xschem", gxi_is_xschem, gxi_read_xschem},
    {"lepton", "Lepton EDA and gEDA", gxi_is_lepton, gxi_read_lepton},
    {"kicad", "KiCad 6 and later", gxi_is_kicad, gxi_read_kicad},
};

const gxi_format_t* found(auto fits) {
  const auto format = std::find_if(std::begin(formats), std::end(formats), fits);
  return format == std::end(formats) ? nullptr : &*format;
}

}  // namespace

std::span<const gxi_format_t> gxi_formats() { return formats; }

const gxi_format_t* gxi_format_named(std::string_view name) {
  return found([&](const gxi_format_t& format) { return format.name == name; });
}

const gxi_format_t* gxi_format_of(std::string_view head) {
  return found([&](const gxi_format_t& format) { return format.is(head); });
}
