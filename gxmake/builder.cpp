// Symbol files, and the walk over a whole design.
#include "gxmake/builder.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <map>

#include "gx/db/file/record_codec.h"
#include "gxmake/object_file.h"
#include "gxmake/object_tree.h"
#include "gxmake/symbol_parts.h"
#include "platform/files.h"

gx_date_t gxm_date_of_files() {
  const char* const epoch = std::getenv("SOURCE_DATE_EPOCH");
  const std::time_t now = epoch ? std::strtoll(epoch, nullptr, 10) : std::time(nullptr);
  std::tm t{};
  gmtime_r(&now, &t);
  const auto i16 = [](int v) { return static_cast<std::int16_t>(v); };
  return {i16(t.tm_mday), i16(t.tm_mon + 1), i16(t.tm_year + 1900), i16(t.tm_hour), i16(t.tm_min)};
}

void gxm_complain(gxm_messages_t& messages, const gxm_source_t& source, std::string_view what) {
  std::string text(source.file);
  if (source.line) text += ":" + std::to_string(source.line);
  if (!text.empty()) text += ": ";
  messages.push_back(text.append(what));
}

void gxm_add_symbol_contents(gxm_tree_t& tree, const gxm_symbol_t& symbol, int father) {
  const auto body = gxm_add_plain(tree, gx_type::body, father);
  const auto graphics = gxm_add_plain(tree, gx_type::graphics, body);
  for (const auto& shape : symbol.shapes) gxm_add_shape(tree, shape, graphics);
  const auto family = gxm_add_plain(tree, gx_type::property_family, body);
  for (const auto& property : symbol.properties)
    gxm_add_property(tree, property, family, true, property.vertical ? 1 : 0);
  const auto pins = gxm_add_plain(tree, gx_type::pin_family, father);
  for (const auto& pin : symbol.pins) {
    const auto id = gxm_add_plain(tree, gx_type::pin, pins, pin.at);
    if (!pin.name.empty())
      gxm_add_property(tree, {.name = "PIN", .value = pin.name, .at = pin.name_at}, id, true, 0);
    if (!pin.type.empty())
      gxm_add_property(tree, {.name = "PINTYPE", .value = pin.type, .at = {}}, id, true, 0);
    for (const auto& property : pin.properties)
      gxm_add_property(tree, property, id, false, property.vertical ? 1 : 0);
  }
}

std::shared_ptr<gx_file_gene_recf_t> gxm_build_symbol(const gxm_symbol_t& symbol,
                                                      const gxm_options_t& options,
                                                      gxm_messages_t& messages) try {
  gxm_tree_t tree = gxm_start_tree(options.date, {40 * gxm_step, 40 * gxm_step}, gxm_step, true);
  const auto family = gxm_add_plain(tree, gx_type::component_family, tree.file->primary_object);
  gxm_add_symbol_contents(tree, symbol, gxm_add_plain(tree, gx_type::component, family));
  gxm_grow_boxes(tree);
  return tree.file;
} catch (const gxm_too_many_objects& error) {
  gxm_complain(messages, symbol.source, "symbol " + symbol.name + ": " + error.what());
  return nullptr;
}

std::vector<gxm_file_t> gxm_build(const gxm_design_t& design, const gxm_options_t& options,
                                  gxm_messages_t& messages) {
  std::vector<gxm_file_t> files;
  std::map<std::string, gxm_source_t> seen;  // "directory/base" as it is first described
  const auto add = [&](const auto& described, const std::string& base, auto build,
                       std::int16_t version = 1) {
    const auto [first, is_new] = seen.emplace(described.name + "/" + base, described.source);
    if (!is_new) {
      gxm_complain(messages, described.source,
                   "a second " + base + " " + described.name + " (the first is in line " +
                       std::to_string(first->second.line) + ")");
    } else if (auto file = build()) {
      files.push_back({described.name, base, std::move(file), version});
    }
  };
  for (const auto& symbol : design.symbols)
    add(symbol, "symbol", [&] { return gxm_build_symbol(symbol, options, messages); });
  for (const auto& sheet : design.sheets)
    add(sheet, "sheet", [&] { return gxm_build_sheet(sheet, design, options, messages); });
  for (const auto& file : design.files) {
    const auto build = [&] { return gxm_build_object_file(file, options, messages); };
    add(file, file.base, build, file.version);
  }
  return files;
}

void gxm_write(const std::vector<gxm_file_t>& files, const std::filesystem::path& root) {
  const auto check = [](const std::filesystem::path& path, bool written) {
    if (!written) throw std::runtime_error(path.string() + ": cannot be written: " + x_why(errno));
  };
  for (const auto& file : files) {
    const auto directory = root / file.directory;
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) throw std::runtime_error(directory.string() + ": " + error.message());
    const auto data = directory / file.data_name(), link = directory / (file.base + ".gx");
    check(data, x_replace_file(data, gx_encode_file(*file.file)));
    check(link, x_replace_file(link, "_" + std::to_string(file.version) + "        \n"));
  }
}
