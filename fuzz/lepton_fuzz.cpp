// Any bytes as a file of Lepton EDA and of its project: they are refused with a place, or they are
// records that can be drawn.
#include <cstdint>
#include <cstdlib>
#include <list>
#include <stdexcept>
#include <string>
#include <string_view>

#include "import/lepton/file.h"
#include "import/lepton/picture.h"
#include "import/lepton/project.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  gxi_lepton_project_t project;
  gxm_messages_t messages;
  std::list<std::string> files;
  gxi_lepton_take_scheme(text, "fuzz", "/", project, files, messages);
  gxi_lepton_take_config(text, project);
  try {
    const auto file = gxi_lepton_read_file(text, "fuzz");
    std::vector<gxi_text_t> texts;
    std::vector<gxm_shape_t> shapes;
    const auto draw = [&](const gxi_lepton_texts_t& of) {
      for (const auto& one : of) gxi_lepton_draw(one, gxi_lepton_seen(one), texts, shapes);
    };
    draw(file.texts);
    draw(file.attached);
    for (const auto& shape : file.shapes)
      for (const auto& drawn : gxi_lepton_shapes(shape))
        if (drawn.points.empty()) std::abort();
    for (const auto& component : file.components) draw(component.attributes);
  } catch (const std::runtime_error& refused) {
    if (std::string_view(refused.what()).rfind("fuzz:", 0) != 0) std::abort();
  }
  return 0;
}
