// From a directory to the pages of its design.
#include "pages/design_pages.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "expand/explain.h"
#include "expand/messages.h"
#include "expand/run/run.h"
#include "gx/db/file/link_file.h"
#include "gx/db/file/record_codec.h"
#include "gx/db/file/sheet_shape.h"
#include "gx/db/object_flags.h"
#include "gx/text/string_compare.h"
#include "gx/text/strings.h"
#include "netlist/netlist.h"

namespace {
void keep_names(kv_list_t<kv_prop_type_record_t>& list, std::string_view name) {
  list.entry[0] = {gx_string(name), gx_string("S")};
  list.count = 1;
}

// Letters, digits, "_", "-", "+" and "." as they are, the rest "_"; other pages' names end in a
// number.
class file_names {
 public:
  std::string name(std::string_view text) {
    std::string plain(text);
    const auto is_plain = [](char c) {
      return (c >= '0' && c <= '9') || (gx_upper_case(c) >= 'A' && gx_upper_case(c) <= 'Z') ||
             std::string_view("_-+.").find(c) != std::string_view::npos;
    };
    std::ranges::replace_if(
        plain, [&](char c) { return !is_plain(c); }, '_');
    plain.erase(0, plain.find_first_not_of('.'));
    if (plain.empty()) plain = "sheet";
    std::string name = plain;
    for (int n = 2; !used_.insert(gx_upper(name)).second; ++n)
      name = plain + "-" + std::to_string(n);
    return name;
  }

 private:
  std::unordered_set<std::string> used_{"INDEX"};
};

// A sheet that can be shown: read and sound.
bool is_shown(const kv_component_t& component) {
  return component.file != nullptr && component.has_primary && component.fault.empty();
}

int found(const std::vector<std::pair<int, int>>& sorted, int key) {
  const auto at = std::ranges::lower_bound(sorted, key, {}, &std::pair<int, int>::first);
  return at != sorted.end() && at->first == key ? at->second : -1;
}

void leave_out(kv_design_pages_t& pages, const kv_component_t& component) {
  std::string why = component.why_no_sheet;
  if (!component.fault.empty()) why = component.sheet_path + ": " + component.fault;
  if (why.empty()) return;  // no sheet at all: a block that is drawn from outside alone
  if (std::ranges::find(pages.left_out, why) == pages.left_out.end()) pages.left_out.push_back(why);
}

void leave_out_elsewhere(kv_design_pages_t& pages) {
  const auto place = gx_place_of_symbols(*pages.top, pages.name);
  if (!place.empty())
    pages.left_out.push_back("the sheets below: their paths begin in " + place +
                             ", which is the place to work in");
}

using numbers_t = std::unordered_map<const kv_component_t*, int>;

// Where the blocks of a sheet lead, when each sheet has one page.
std::vector<std::pair<int, int>> blocks_of(const kv_design_pages_t& pages, const kv_sheet_t& sheet,
                                           const numbers_t& page_of) {
  std::vector<std::pair<int, int>> below;
  for (const auto& symbol : sheet.symbols) {
    if (symbol.component < 0) continue;
    const auto page = page_of.find(gx_at(pages.sheets->components, symbol.component).get());
    if (page == page_of.end()) continue;
    for (int i = symbol.first_inst; i < symbol.first_inst + symbol.nb_of_inst; ++i) {
      const auto& inst = gx_at(sheet.insts, i);
      if (!inst.is_primitive) below.emplace_back(inst.object_id, page->second);
    }
  }
  std::ranges::sort(below);
  return below;
}
}  // namespace

bool kv_open_pages(kv_design_pages_t& pages, const std::string& directory,
                   std::span<const std::string_view> primitives, std::string& why) {
  pages.name = directory;
  const auto version = gx_file_get_file_version(directory, "sheet");
  if (!version.found || !version.valid) {
    why = directory + (version.found && !version.why.empty() ? ": " + version.why : ": no sheet");
    return false;
  }
  const std::string path(gx_view(version.file_pathname));
  const auto load = gx_load_file(path);
  if (load.code != gx_code::all_is_ok) {
    why = load.message;
    return false;
  }
  const std::string fault = gx_sheet_fault(*load.file);
  if (!fault.empty() || load.file->primary_object <= 0) {
    why = path + ": " + (fault.empty() ? "no sheet" : fault);
    return false;
  }
  pages.top = load.file;
  gx_hide_invisible(*pages.top);
  auto& setup = *pages.setup;
  for (const std::string_view primitive : primitives) {
    const auto equals = std::min(primitive.find('='), primitive.size());
    const auto value = primitive.substr(std::min(equals + 1, primitive.size()));
    gx_at(setup.primitive.entry, setup.primitive.count++) = {gx_string(primitive.substr(0, equals)),
                                                             gx_string(value)};
  }
  keep_names(setup.property_instance, "INST");
  keep_names(setup.property_pin, "PIN");
  keep_names(setup.property_net, "NET");
  setup.store_size = kv_max_records;
  pages.sheets->setup = pages.setup.get();
  pages.sheets->keeps_files = true;
  kv_set_top(*pages.sheets, *pages.top, path);
  return true;
}

void kv_page_of_top(kv_design_pages_t& pages) {
  pages.pages = {{.component = &pages.sheets->top, .path = "", .name = "sheet"}};
}

void kv_pages_by_sheet(kv_design_pages_t& pages) {
  leave_out_elsewhere(pages);
  auto& sheets = *pages.sheets;
  kv_analysed(sheets, sheets.top);
  numbers_t page_of;
  std::unordered_map<std::string, int> by_path;
  file_names names;
  kv_sheet_visitor_t visitor;
  visitor.enter = [&](kv_component_t& component, const std::string& path) {
    if (!is_shown(component)) {
      leave_out(pages, component);
      return false;
    }
    gx_hide_invisible(*component.file);
    const bool is_top = &component == &sheets.top;
    const auto above = by_path.find(path.substr(0, std::min(path.rfind('/'), path.size())));
    const auto number = static_cast<int>(pages.pages.size());
    page_of[&component] = number;
    by_path[path] = number;
    pages.pages.push_back({.component = &component,
                           .path = path,
                           .name = names.name(is_top ? pages.name : component.directory),
                           .above = is_top || above == by_path.end() ? -1 : above->second});
    return true;
  };
  visitor.leave = [&](kv_sheet_t&, const kv_sheet_symbol_t&, kv_component_t& below) {
    if (!is_shown(below)) leave_out(pages, below);
  };
  kv_walk_down(sheets, visitor);
  for (auto& page : pages.pages) page.below = blocks_of(pages, page.component->sheet, page_of);
}

bool kv_expand_pages(kv_design_pages_t& pages, std::string& why) {
  std::string refused;  // the last error: what ended a run that is not done
  const kv_message_catcher catcher([&](const kv_told_t& told) {
    const auto kind = kv_row_of(told.code).kind;
    if (kind == kv_message_kind::error || kind == kv_message_kind::refusal)
      refused = kv_words_of(told);
  });
  const kv_sheet_stack_t no_stack;
  std::int16_t level = 0;
  std::int32_t macro = 0;
  const auto result = kv_expand_sheets({.setup = *pages.setup,
                                        .design = pages.design,
                                        .sheets = no_stack,
                                        .expand_level = level,
                                        .macro_level = macro,
                                        .to_the_end = true,
                                        .origins = &pages.origins},
                                       pages.sheets);
  if (result == kv_run_result::done) return true;
  why = pages.name + ": cannot be expanded: " + refused;
  return false;
}

bool kv_pages_by_use(kv_design_pages_t& pages, std::string& why) {
  kv_pages_by_sheet(pages);
  std::unordered_map<const kv_sheet_t*, kv_component_t*> component_of;
  for (const auto& page : pages.pages) component_of[&page.component->sheet] = page.component;
  pages.pages.clear();

  if (!kv_expand_pages(pages, why)) return false;
  const kv_netlist_t netlist(pages.design);
  const auto& visits = pages.origins.visits;
  if (std::ssize(visits) > kv_most_pages) {
    why = pages.name + ": " + std::to_string(visits.size()) + " pages, more than " +
          std::to_string(kv_most_pages);
    return false;
  }
  file_names names;
  std::vector<int> page_of(visits.size(), -1);
  for (std::size_t i = 0; i < visits.size(); ++i) {
    const auto component = component_of.find(visits[i].sheet);
    if (component == component_of.end()) continue;
    kv_page_t page{.component = component->second,
                   .path = std::string(
                       kv_visit_path(pages.design, pages.origins, static_cast<std::int32_t>(i)))};
    std::string words = page.path.empty() ? pages.name : page.path.substr(1);
    std::ranges::replace(words, '/', '.');
    page.name = names.name(words);
    page_of[i] = static_cast<int>(pages.pages.size());
    if (visits[i].above >= 0) {
      page.above = gx_at(page_of, visits[i].above);
      if (page.above >= 0)
        gx_at(pages.pages, page.above)
            .below.emplace_back(netlist.object_id({kv_named::macro, visits[i].macro}), page_of[i]);
    }
    pages.pages.push_back(std::move(page));
  }
  const kv_explainer_t explainer(pages.design, pages.origins);
  for (std::int32_t net = 1; net <= netlist.count(kv_named::net); ++net) {
    for (const kv_drawn_t& drawn : explainer.drawn(net)) {
      if (drawn.net != net || drawn.visit < 0 || gx_at(page_of, drawn.visit) < 0) continue;
      gx_at(pages.pages, gx_at(page_of, drawn.visit)).nets.emplace_back(drawn.object_id, net);
    }
  }
  for (auto& page : pages.pages) {
    std::ranges::sort(page.below);
    std::ranges::sort(page.nets);
  }
  return true;
}

gx_sheet_labels_t kv_labels_of(const kv_design_pages_t& pages, int page) {
  const kv_page_t& shown = gx_at(pages.pages, page);
  gx_sheet_labels_t labels;
  labels.path = shown.path.empty() ? pages.name : shown.path;
  labels.title = labels.path;
  if (!shown.component->directory.empty()) labels.title += "  " + shown.component->directory;
  labels.above = shown.above;
  labels.below = [&shown](int inst) { return found(shown.below, inst); };
  if (!shown.nets.empty()) {
    labels.net_name = [&shown, &design = pages.design](int net) -> std::string_view {
      const int flat = found(shown.nets, net);
      return flat > 0 ? kv_netlist_t(design).path({kv_named::net, flat}) : std::string_view();
    };
  }
  return labels;
}
