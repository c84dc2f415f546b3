// A walk from the leaves up, handing names to the nets above.
#include "import/lepton/commons.h"

#include <map>

#include "gx/text/at.h"
#include "import/drawing/names.h"

namespace {

class sharer {
 public:
  sharer(gxi_design_t& design, const gxi_commons_t& commons) : design_(design), commons_(commons) {}

  void run() {
    names_.resize(design_.cells.size());
    handed_up_.resize(design_.cells.size());
    for (const int cell : commons_.order) walk(static_cast<std::size_t>(cell));
    for (const int cell : commons_.order) write(static_cast<std::size_t>(cell));
  }

 private:
  void walk(std::size_t cell) {
    const auto& sheet = *design_.cells[cell].sheet;
    auto& names = names_[cell] = commons_.names[cell];
    for (const auto& instance : sheet.instances) {
      const auto symbol = static_cast<std::size_t>(instance.symbol);
      if (handed_up_[symbol].empty()) continue;
      const auto& pins = design_.cells[symbol].symbol.pins;
      for (std::size_t pin = 0; pin < instance.nets.size(); ++pin) {
        const auto handed = handed_up_[symbol].find(pins[pin].name);
        if (instance.nets[pin] < 0 || handed == handed_up_[symbol].end()) continue;
        auto& here = gx_at(names, instance.nets[pin]);
        if (!here.is_named)
          here = {handed->second, true, true};
        else if (here.name != handed->second)
          gxm_complain(design_.warnings, instance.source,
                       "net " + handed->second + " of the pin " + pins[pin].name +
                           " has another name here, which counts");
      }
    }
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (!names[i].always) continue;
      if (sheet.nets[i].port.empty())
        shared_.emplace(names[i].name, "");
      else
        handed_up_[cell].emplace(sheet.nets[i].port, names[i].name);
    }
  }

  // Names that differ in their case stay apart.
  const std::string& given(std::map<std::string, std::string>::iterator shared) {
    auto& name = shared->second;
    if (!name.empty()) return name;
    return name = taken_.take(shared->first);
  }

  void write(std::size_t cell) {
    auto& sheet = *design_.cells[cell].sheet;
    for (std::size_t i = 0; i < sheet.nets.size(); ++i) {
      const auto shared = shared_.find(names_[cell][i].name);
      if (shared != shared_.end() && sheet.nets[i].port.empty())
        sheet.nets[i].global = given(shared);
    }
    for (auto& instance : sheet.instances)
      if (instance.kind == gxi_kind::global)
        instance.name = gx_at(sheet.nets, instance.nets.front()).global;
  }

  gxi_design_t& design_;
  const gxi_commons_t& commons_;
  std::vector<std::vector<gxi_common_name_t>> names_;          // by cell and net
  std::vector<std::map<std::string, std::string>> handed_up_;  // by cell: names by its pins
  std::map<std::string, std::string> shared_;                  // names, and what they are here
  gxi_names_t taken_;
};

}  // namespace

void gxi_share_names(gxi_design_t& design, const gxi_commons_t& commons) {
  sharer(design, commons).run();
}
