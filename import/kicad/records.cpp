#include "import/kicad/records.h"

#include <algorithm>

#include "gx/text/at.h"
#include "import/drawing/source_file.h"

namespace {

constexpr int oldest_version = 20200310;

gxi_kicad_use_t use_of(const gxi_kicad_list_t& path) {
  gxi_kicad_use_t use{.path = std::string(path.word(1)),
                      .reference = std::string(path.child("reference").word(1))};
  if (const auto unit = path.child("unit")) use.unit = static_cast<int>(unit.number(1));
  return use;
}

std::string id_of(const gxi_kicad_list_t& item) { return std::string(item.child("uuid").word(1)); }

class reader {
 public:
  reader(gxi_kicad_file_t& file, const gxi_kicad_list_t& root) : file_(file), root_(root) {}

  void run() {
    for (const auto& item : root_.children()) {
      const auto* const row = std::find_if(std::begin(rows), std::end(rows), [&](const row_t& one) {
        return one.keyword == item.keyword();
      });
      if (row != std::end(rows))
        (this->*row->take)(item);
      else if (gxi_kicad_shape(item, file_.shapes) && item.keyword() == "text_box")
        file_.texts.push_back(gxi_kicad_boxed_text(item, false));
    }
  }

 private:
  struct row_t {
    std::string_view keyword;
    void (reader::*take)(const gxi_kicad_list_t& item);
  };

  void take_id(const gxi_kicad_list_t& item) { file_.id = item.word(1); }
  void take_paper(const gxi_kicad_list_t& item) {
    struct paper_t {
      std::string_view name;
      int width, height;  // lying, in tenths of a millimetre
    };
    static constexpr paper_t papers[] = {
        {"A5", 2100, 1480},      {"A4", 2970, 2100},      {"A3", 4200, 2970},
        {"A2", 5940, 4200},      {"A1", 8410, 5940},      {"A0", 11890, 8410},
        {"A", 2794, 2159},       {"B", 4318, 2794},       {"C", 5588, 4318},
        {"D", 8636, 5588},       {"E", 11176, 8636},      {"USLetter", 2794, 2159},
        {"USLegal", 3556, 2159}, {"USLedger", 4318, 2794}};
    if (item.word(1) == "User") file_.paper = {item.length(2), item.length(3)};
    for (const auto& [name, width, height] : papers)
      if (item.word(1) == name) file_.paper = {width * 1000, height * 1000};
    if (item.has_word("portrait")) std::swap(file_.paper.x, file_.paper.y);
  }
  void take_title(const gxi_kicad_list_t& item) {
    for (const auto& list : item.children())
      file_.title.emplace_back(list.keyword() == "comment" ? "comment" + std::string(list.word(1))
                                                           : std::string(list.keyword()),
                               list.word(list.keyword() == "comment" ? 2 : 1));
  }
  void take_symbols(const gxi_kicad_list_t& item) { file_.symbols = gxi_kicad_read_symbols(item); }

  void add_wire(const gxi_kicad_list_t& item, std::vector<gxi_kicad_wire_t>& wires) {
    std::vector<gxi_kicad_point_t> points;
    for (const auto& point : item.child("pts").children()) points.push_back(gxi_kicad_point(point));
    if (points.size() < 2) item.refuse("a wire has fewer than two points");
    for (std::size_t i = 1; i < points.size(); ++i)
      wires.push_back({item.line(), points[i - 1], points[i]});
  }
  void take_wire(const gxi_kicad_list_t& item) { add_wire(item, file_.wires); }
  void take_bus(const gxi_kicad_list_t& item) { add_wire(item, file_.buses); }
  void take_entry(const gxi_kicad_list_t& item) {
    const auto at = gxi_kicad_point(item.child("at")), size = gxi_kicad_point(item.child("size"));
    file_.entries.push_back({item.line(), at, {at.x + size.x, at.y + size.y}});
  }
  void take_junction(const gxi_kicad_list_t& item) {
    file_.junctions.push_back(gxi_kicad_point(item.child("at")));
  }
  void take_no_connect(const gxi_kicad_list_t& item) {
    file_.no_connects.push_back(gxi_kicad_point(item.child("at")));
  }
  void take_text(const gxi_kicad_list_t& item) {
    file_.texts.push_back(gxi_kicad_text(item, item.word(1)));
  }
  void take_table(const gxi_kicad_list_t& item) {
    for (const auto& cell : item.child("cells").children()) {
      // Cells that another one covers span nothing.
      if (cell.child("span") && cell.child("span").number(1) == 0) continue;
      if (gxi_kicad_shape(cell, file_.shapes))
        file_.texts.push_back(gxi_kicad_boxed_text(cell, false));
    }
  }
  void take_area(const gxi_kicad_list_t& item) {
    for (const auto& list : item.children()) gxi_kicad_shape(list, file_.shapes);
  }
  void take_image(const gxi_kicad_list_t&) { ++file_.images; }

  static gxi_kicad_label_t label_of(const gxi_kicad_list_t& item, gxi_kicad_label kind) {
    return {kind, gxi_kicad_text(item, item.word(1)), std::string(item.child("shape").word(1))};
  }
  void take_label(const gxi_kicad_list_t& item) {
    file_.labels.push_back(label_of(item, gxi_kicad_label::local));
  }
  void take_global_label(const gxi_kicad_list_t& item) {
    file_.labels.push_back(label_of(item, gxi_kicad_label::global));
  }
  void take_hierarchical_label(const gxi_kicad_list_t& item) {
    file_.labels.push_back(label_of(item, gxi_kicad_label::hierarchical));
  }
  void take_other_label(const gxi_kicad_list_t& item) {
    file_.labels.push_back(label_of(item, gxi_kicad_label::other));
  }

  // A name, or of a later version a word each.
  void take_alias(const gxi_kicad_list_t& item) {
    std::vector<std::string> members;
    const auto list = item.child("members");
    for (int i = 1; !list.word(i).empty(); ++i) members.emplace_back(list.word(i));
    file_.aliases.emplace_back(item.word(1), std::move(members));
  }

  void take_uses(const gxi_kicad_list_t& item, std::vector<gxi_kicad_use_t>& uses) {
    for (const auto& list : item.children())
      if (list.keyword() == "path")
        uses.push_back(use_of(list));
      else if (list.keyword() == "project")
        take_uses(list, uses);
  }
  void take_all_uses(const gxi_kicad_list_t& item) { take_uses(item, file_.all_uses); }

  void take_placed(const gxi_kicad_list_t& item) {
    gxi_kicad_placed_t placed{.line = item.line(), .id = id_of(item)};
    const auto local = item.child("lib_name");
    placed.symbol = local ? local.word(1) : item.child("lib_id").word(1);
    placed.at = gxi_kicad_point(item.child("at"));
    placed.rotate = gxi_kicad_quarters(item.child("at"));
    if (const auto mirror = item.child("mirror").word(1); !mirror.empty())
      placed.mirror = mirror[0];
    if (const auto unit = item.child("unit")) placed.unit = static_cast<int>(unit.number(1));
    for (const auto* const style : {"convert", "body_style"})
      if (const auto list = item.child(style)) placed.style = static_cast<int>(list.number(1));
    placed.on_board = item.flag("on_board", true);
    placed.in_bom = item.flag("in_bom", true);
    placed.in_simulation = !item.flag("exclude_from_sim");
    placed.populated = !item.flag("dnp");
    for (const auto& list : item.children()) {
      if (list.keyword() == "property") placed.fields.push_back(gxi_kicad_field(list));
      if (list.keyword() == "instances") take_uses(list, placed.uses);
      if (const auto function = list.child("alternate"); list.keyword() == "pin" && function)
        placed.alternates.emplace(list.word(1), std::string(function.word(1)));
    }
    file_.placed.push_back(std::move(placed));
  }

  // The first two fields of a sheet are its name and its file, in older files under the words of
  // the user's language.
  static void name_by_order(std::vector<gxi_kicad_field_t>& fields) {
    constexpr std::string_view words[] = {"Sheetname", "Sheetfile"};
    for (std::size_t i = 0; i < std::size(words) && i < fields.size(); ++i)
      fields[i].name = words[i];
  }

  void take_block(const gxi_kicad_list_t& item) {
    gxi_kicad_block_t block{.line = item.line(),
                            .id = id_of(item),
                            .at = gxi_kicad_point(item.child("at")),
                            .size = gxi_kicad_point(item.child("size"))};
    for (const auto& list : item.children()) {
      if (list.keyword() == "property") block.fields.push_back(gxi_kicad_field(list));
      if (list.keyword() != "pin") continue;
      auto pin = label_of(list, gxi_kicad_label::hierarchical);
      pin.shape = list.word(2);
      block.pins.push_back(std::move(pin));
    }
    if (block.file().empty()) name_by_order(block.fields);
    if (block.file().empty()) item.refuse("a sheet names no file");
    file_.blocks.push_back(std::move(block));
  }

  static constexpr row_t rows[] = {
      {"uuid", &reader::take_id},
      {"paper", &reader::take_paper},
      {"title_block", &reader::take_title},
      {"lib_symbols", &reader::take_symbols},
      {"wire", &reader::take_wire},
      {"bus", &reader::take_bus},
      {"bus_entry", &reader::take_entry},
      {"junction", &reader::take_junction},
      {"no_connect", &reader::take_no_connect},
      {"text", &reader::take_text},
      {"table", &reader::take_table},
      {"rule_area", &reader::take_area},
      {"image", &reader::take_image},
      {"label", &reader::take_label},
      {"global_label", &reader::take_global_label},
      {"hierarchical_label", &reader::take_hierarchical_label},
      {"netclass_flag", &reader::take_other_label},
      {"directive_label", &reader::take_other_label},
      {"bus_alias", &reader::take_alias},
      {"symbol_instances", &reader::take_all_uses},
      {"symbol", &reader::take_placed},
      {"sheet", &reader::take_block},
  };

  gxi_kicad_file_t& file_;
  const gxi_kicad_list_t root_;
};

}  // namespace

std::string_view gxi_kicad_block_t::field(std::string_view name,
                                          std::string_view older_name) const {
  const auto found = std::find_if(fields.begin(), fields.end(), [&](const auto& one) {
    return one.name == name || one.name == older_name;
  });
  return found == fields.end() ? std::string_view() : std::string_view(found->value.text);
}

gxi_kicad_file_t gxi_kicad_read_records(std::string_view text, std::string_view name) {
  if (text.starts_with("EESchema"))
    gxi_refuse({name, 1}, "a sheet of KiCad 5; open and save it with KiCad 6 or later first");
  const gxi_kicad_tree_t tree(text, name);
  const auto root = tree.root();
  if (root.keyword() != "kicad_sch") root.refuse("no (kicad_sch begins here");
  gxi_kicad_file_t file;
  if (const auto version = root.child("version"))
    file.version = static_cast<int>(version.number(1));
  if (file.version < oldest_version)
    root.refuse("version " + std::to_string(file.version) +
                " is older than KiCad 6; open and save it with a newer KiCad first");
  reader(file, root).run();
  return file;
}
