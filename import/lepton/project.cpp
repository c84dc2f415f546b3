// The forms of a Scheme file that name libraries, and the groups of a configuration file.
#include "import/lepton/project.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>

#include "import/drawing/source_file.h"

namespace {

namespace fs = std::filesystem;

constexpr int levels_up = 4;  // above the top sheet

// A form at the top of a Scheme file: its words, texts in quotes without them.
struct form_t {
  int line = 0;
  std::vector<std::string> words{};
  bool plain = true;  // no form within it
  bool ends = true;   // false: the text ends within it
};

class scheme_reader {
 public:
  explicit scheme_reader(std::string_view text) : text_(text) {}

  std::optional<form_t> next() {
    form_t form;
    int depth = 0;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '\n') ++line_;
      if (c == ';') {
        at_ = std::min(text_.find('\n', at_), text_.size()) - 1;
      } else if (text_.substr(at_, 2) == "#|") {
        const auto end = std::min(text_.find("|#", at_), text_.size() - 1);
        line_ +=
            static_cast<int>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(at_),
                                        text_.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
        at_ = end + 1;
      } else if (c == '(') {
        if (++depth == 1) form.line = line_;
        form.plain = form.plain && depth == 1;
      } else if (c == ')') {
        if (depth > 0 && --depth == 0) {
          ++at_;
          return form;
        }
      } else if (depth > 0 && std::string_view(" \t\r\n").find(c) == std::string_view::npos) {
        form.words.push_back(word());
      }
    }
    form.ends = false;
    return depth > 0 ? std::optional(form) : std::nullopt;
  }

 private:
  std::string word() {
    std::string word;
    if (text_[at_] == '"') {
      for (++at_; at_ < text_.size() && text_[at_] != '"'; ++at_) {
        if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
        if (text_[at_] == '\n') ++line_;
        word += text_[at_];
      }
      return word;
    }
    while (at_ < text_.size() &&
           std::string_view(" \t\r\n()\";").find(text_[at_]) == std::string_view::npos)
      word += text_[at_++];
    --at_;
    return word;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int line_ = 1;
};

// ${NAME} by the environment.
std::string expanded(std::string text) {
  for (auto at = text.find("${"); at != std::string::npos; at = text.find("${", at)) {
    const auto end = text.find('}', at);
    if (end == std::string::npos) break;
    const char* const value = std::getenv(text.substr(at + 2, end - at - 2).c_str());
    const std::string with = value == nullptr ? "" : value;
    text.replace(at, end + 1 - at, with);
    at += with.size();
  }
  return text;
}

// The library that is named last is searched first.
void add_library(std::vector<gxi_lepton_place_t>& libraries, const form_t& form,
                 const fs::path& beside, bool deep) {
  const fs::path given = expanded(form.words[1]);
  libraries.insert(libraries.begin(),
                   {(given.is_absolute() ? given : beside / given).lexically_normal(), deep});
}

bool is_on(std::string_view value) {
  return value == "true" || value == "enabled" || value == "1" || value == "yes";
}

struct setting_t {
  std::string_view group, key;  // of a configuration file, without its first word
  std::string_view form;        // of a Scheme file
  bool gxi_lepton_project_t::*value;
  std::string_view when;  // the value that sets it; "": any that is on
};
constexpr setting_t settings[] = {
    {"hierarchy", "mangle-net-attribute", "hierarchy-netattrib-mangle",
     &gxi_lepton_project_t::net_is_local, ""},
    {"hierarchy", "mangle-netname-attribute", "hierarchy-netname-mangle",
     &gxi_lepton_project_t::netname_is_local, ""},
    {"hierarchy", "traverse-hierarchy", "hierarchy-traversal", &gxi_lepton_project_t::walks_down,
     ""},
    {"", "net-naming-priority", "net-naming-priority", &gxi_lepton_project_t::netname_wins,
     "netname"}};

void set(gxi_lepton_project_t& project, const setting_t& setting, std::string_view value) {
  project.*setting.value = setting.when.empty() ? is_on(value) : value.rfind(setting.when, 0) == 0;
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

void reset_symbols(gxi_lepton_project_t& project) {
  project.symbols.clear();
  project.has_installed = false;
}

void load(const fs::path& path, const fs::path& beside, gxi_lepton_project_t& project,
          std::list<std::string>& files, gxm_messages_t& messages, std::set<fs::path>& loaded);

void take_forms(std::string_view text, std::string_view name, const fs::path& beside,
                gxi_lepton_project_t& project, std::list<std::string>& files,
                gxm_messages_t& messages, std::set<fs::path>& loaded) {
  scheme_reader reader(text);
  while (const auto form = reader.next()) {
    const auto& words = form->words;
    if (!form->ends) gxm_complain(messages, {name, form->line}, "a \"(\" that is not closed");
    if (words.empty() || !form->ends) continue;
    const auto& what = words.front();
    const auto setting = std::find_if(std::begin(settings), std::end(settings),
                                      [&](const auto& known) { return known.form == what; });
    if (form->plain && setting != std::end(settings) && words.size() == 2)
      set(project, *setting, words[1]);
    else if (form->plain && what == "component-library" && words.size() > 1)
      add_library(project.symbols, *form, beside, false);
    else if (form->plain && what == "component-library-search" && words.size() > 1)
      add_library(project.symbols, *form, beside, true);
    else if (form->plain && what == "source-library" && words.size() > 1)
      add_library(project.sheets, *form, beside, false);
    else if (form->plain && what == "source-library-search" && words.size() > 1)
      add_library(project.sheets, *form, beside, true);
    else if (form->plain && what == "load" && words.size() == 2)
      load(beside / expanded(words[1]), beside, project, files, messages, loaded);
    else if (what == "reset-component-library")
      reset_symbols(project);
    else if (what == "reset-source-library")
      project.sheets.clear();
    else
      gxm_complain(messages, {name, form->line}, "\"(" + what + " ...)\" is not followed");
  }
}

// A file that a form loads, once; its paths are taken from where those of the first file are.
void load(const fs::path& path, const fs::path& beside, gxi_lepton_project_t& project,
          std::list<std::string>& files, gxm_messages_t& messages, std::set<fs::path>& loaded) {
  if (!loaded.insert(path.lexically_normal()).second) return;
  try {
    const auto text = gxi_read_source(path);
    const std::string_view kept = files.emplace_back(path.lexically_normal().string());
    take_forms(text, kept, beside, project, files, messages, loaded);
  } catch (const std::runtime_error& error) {
    messages.emplace_back(error.what());
  }
}

}  // namespace

void gxi_lepton_take_scheme(std::string_view text, std::string_view name, const fs::path& beside,
                            gxi_lepton_project_t& project, std::list<std::string>& files,
                            gxm_messages_t& messages) {
  std::set<fs::path> loaded{fs::path(name)};
  take_forms(text, name, beside, project, files, messages, loaded);
}

void gxi_lepton_take_config(std::string_view text, gxi_lepton_project_t& project) {
  std::string group;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const auto line = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      group = line.substr(1, line.find(']') - 1);
      continue;
    }
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) continue;
    const auto key = trimmed(line.substr(0, equals)), value = trimmed(line.substr(equals + 1));
    for (const auto& setting : settings)
      for (const std::string program : {"netlist", "gnetlist"})
        if (key == setting.key &&
            group == program + (setting.group.empty() ? "" : "." + std::string(setting.group)))
          set(project, setting, value);
  }
}

gxi_lepton_project_t gxi_lepton_project(const fs::path& top, std::list<std::string>& files,
                                        gxm_messages_t& messages) {
  gxi_lepton_project_t project;
  // The nearest file of each name counts.
  const auto nearest = [&](const char* name, const std::function<void(const fs::path&)>& take) {
    auto directory = top.parent_path();
    for (int level = 0; level <= levels_up; ++level, directory = directory.parent_path()) {
      std::error_code none;
      if (!fs::is_regular_file(directory / name, none)) continue;
      take(directory / name);
      return;
    }
  };
  for (const char* const name : {"gafrc", "gnetlistrc"})
    nearest(name, [&](const fs::path& path) {
      const std::string_view kept = files.emplace_back(path.string());
      gxi_lepton_take_scheme(gxi_read_source(path), kept, path.parent_path(), project, files,
                             messages);
    });
  nearest("lepton.conf",
          [&](const fs::path& path) { gxi_lepton_take_config(gxi_read_source(path), project); });
  return project;
}
