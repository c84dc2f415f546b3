// The files and variables that name libraries, in the order in which they count.
#include "import/xschem/project.h"

#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "import/xschem/attributes.h"
#include "import/xschem/settings.h"

namespace {

namespace fs = std::filesystem;

constexpr int levels_up = 4;  // above the top sheet
constexpr const char* path_name = "XSCHEM_LIBRARY_PATH";

// The variable of the environment; "": not set.
std::string of_environment(const gxi_xschem_settings_t& settings, const char* name) {
  const auto found = settings.find("env(" + std::string(name) + ")");
  return found == settings.end() ? "" : found->second;
}

gxi_xschem_settings_t environment() {
  gxi_xschem_settings_t settings;
  for (char* const* entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    const auto equals = text.find('=');
    if (equals != std::string_view::npos)
      settings["env(" + std::string(text.substr(0, equals)) + ")"] = text.substr(equals + 1);
  }
  return settings;
}

// The directories of a list that ":" or blanks part.
std::vector<std::string> parted(std::string_view list) {
  std::vector<std::string> parts(1);
  for (const char c : list) {
    if (c != ':' && !gxi_xschem_is_blank(c))
      parts.back() += c;
    else if (!parts.back().empty())
      parts.emplace_back();
  }
  if (parts.back().empty()) parts.pop_back();
  return parts;
}

// Where the program keeps its own files: as the environment says, else as the program on the path
// lies, else where it commonly is.
std::vector<fs::path> shares(const gxi_xschem_settings_t& settings) {
  std::vector<fs::path> found;
  std::error_code none;
  const auto add = [&](const fs::path& share) {
    if (fs::is_directory(share, none) &&
        std::find(found.begin(), found.end(), share) == found.end())
      found.push_back(share);
  };
  const auto said = of_environment(settings, "XSCHEM_SHAREDIR");
  if (!said.empty()) add(said);
  for (const auto& directory : parted(of_environment(settings, "PATH"))) {
    const auto program = fs::path(directory) / "xschem";
    if (!fs::is_regular_file(program, none)) continue;
    for (const auto& at : {program, fs::weakly_canonical(program, none)})
      add(at.parent_path().parent_path() / "share" / "xschem");
    break;
  }
  for (const char* const share : {"/usr/share/xschem", "/usr/local/share/xschem"}) add(share);
  return found;
}

// The file that counts; empty: none.
fs::path file_of(const fs::path& top, const fs::path& home, const fs::path& kit) {
  std::error_code none;
  std::vector<fs::path> places;
  auto above = top.parent_path();
  for (int level = 0; level <= levels_up; ++level, above = above.parent_path())
    places.push_back(above);
  if (!home.empty()) places.push_back(home);
  if (!kit.empty()) places.push_back(kit);
  for (const auto& place : places)
    if (fs::is_regular_file(place / "xschemrc", none)) return place / "xschemrc";
  return {};
}

}  // namespace

gxi_xschem_project_t gxi_xschem_project(const fs::path& top, std::list<std::string>& files,
                                        gxm_messages_t& messages) {
  auto settings = environment();
  gxi_xschem_project_t project;
  const auto home = of_environment(settings, "HOME");
  const auto kits = of_environment(settings, "PDK_ROOT"), kit = of_environment(settings, "PDK");
  const auto own = home.empty() ? fs::path() : fs::path(home) / ".xschem";
  const auto of_kit =
      kits.empty() || kit.empty() ? fs::path() : fs::path(kits) / kit / "libs.tech" / "xschem";
  if (!of_kit.empty()) project.installed.push_back(of_kit);
  const auto share = shares(settings);
  for (const auto& one : share) project.installed.push_back(one / "xschem_library");

  settings[path_name] = of_environment(settings, path_name);
  settings["USER_CONF_DIR"] = own.string();
  if (!share.empty()) settings["XSCHEM_SHAREDIR"] = share.front().string();
  const auto file = file_of(top, own, of_kit);
  // The program is started where the xschemrc of the drawing is, else where the drawing is.
  const bool is_own = !file.empty() && file != own / "xschemrc" && file != of_kit / "xschemrc";
  const auto beside = is_own ? file.parent_path() : top.parent_path();
  settings["env(PWD)"] = beside.string();
  if (!file.empty()) gxi_xschem_take_settings(file, settings, files, messages);
  for (auto library : parted(settings[path_name])) {
    if (library == "~" || library.starts_with("~/")) library.replace(0, 1, home);
    project.libraries.push_back((beside / library).lexically_normal());
  }
  project.variables = std::move(settings);
  return project;
}
