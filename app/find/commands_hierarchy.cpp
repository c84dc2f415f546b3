// LIST HIErarchy: the tree of blocks, in the list and in the file "hierarchy".
#include <cerrno>
#include <string>

#include "app/find/drawings.h"
#include "app/find/find_path.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/language/interpreter.h"
#include "app/sheet/command_viewport.h"
#include "app/sheet/walk.h"
#include "expand/store.h"
#include "gx/db/file/file_state.h"
#include "gx/text/messages/message_list.h"
#include "platform/files.h"

namespace {

constexpr std::string_view list_hierarchy_words = "# LIST HIErarchy ";
constexpr std::size_t most_lines = 500000;  // a design may hold more blocks than fit anywhere

// Writes the tree line by line, each sheet analysed once.
class hierarchy_lister {
 public:
  hierarchy_lister(kv_drawings_t& drawings, std::FILE* file) : drawings_(drawings), file_(file) {}

  // A sheet and all below it; `cell` is the directory of this one.
  void list(kv_component_t& from, const std::string& path, const std::string& cell) {
    kv_walk_drawings(drawings_, from, path, [&](const kv_walked_t& walked) {
      return list_sheet(walked, walked.way.empty() ? cell : walked.component.directory);
    });
  }

  bool is_full() const { return lines_ >= most_lines || is_stopped_; }
  bool is_written() const { return is_written_; }

 private:
  // The blocks to go on with.
  std::vector<kv_next_t> list_sheet(const kv_walked_t& walked, const std::string& cell) {
    std::vector<kv_next_t> blocks;
    if (is_full()) return blocks;
    const kv_sheet_t& sheet = drawings_.analysed(walked.component);
    const std::string path = walked.path.empty() ? "/" : walked.path;
    const std::size_t insts = sheet.insts.size(), nets = sheet.groups.size();
    tell(std::string(2 * walked.way.size(), ' ') + path + "  " + cell + "  instances " +
         std::to_string(insts) + "  nets " + std::to_string(nets));
    kv_record("block", {{"path", path}, {"cell", cell}, {"instances", insts}, {"nets", nets}});
    for (const auto& inst : sheet.insts) {
      if (!inst.is_primitive)
        blocks.push_back({inst.object_id, std::string(sheet.view(inst.suffix).substr(1))});
    }
    return blocks;
  }

  void tell(const std::string& line) {
    constexpr std::size_t lines_between_looks = 1024;
    gx_tell_wrapped("# " + line);
    is_written_ = is_written_ && std::fprintf(file_, "%s\n", line.c_str()) > 0;
    if (++lines_ % lines_between_looks == 0) is_stopped_ = kv_stop_asked();
  }

  kv_drawings_t& drawings_;
  std::FILE* file_;
  std::size_t lines_ = 0;
  bool is_stopped_ = false, is_written_ = true;
};

// The block to begin with: the way to its sheet, its path, and its cell. The top without a word;
// nothing after the refusal.
struct root_t {
  kv_way_t way;
  std::string path, cell;
};
std::optional<root_t> wanted_root(kv_drawings_t& drawings, const kv_command_t& command) {
  if (command.count() < 3) return root_t{{}, "", std::string(gx_view(kv_at_level(1).file_path))};
  const auto search = kv_search_path(drawings, command.word(3), SIZE_MAX);
  for (const auto& found : search.found) {
    if (found.what != "block") continue;
    if (auto way = kv_way_to(drawings, found.path)) {
      const std::string cell(gx_view(way->back().directory));
      return root_t{std::move(*way), found.path, cell};
    }
  }
  kv_refuse(list_hierarchy_words, command, "# !! Error : Path not found ? ", 3);
  kv_tell_search_end("No block", search);
  return std::nullopt;
}

void kv_list_hierarchy_cmd(const kv_command_t& command) {
  kv_drawings_t drawings(&kv_sext);
  auto* component = drawings.top_component();
  if (component == nullptr) return kv_refuse(list_hierarchy_words, command, kv_no_sheet, 3);
  const auto root = wanted_root(drawings, command);
  if (!root) return;
  if (!root->way.empty()) component = drawings.component_in(root->way.back().directory);

  const auto top = static_cast<std::size_t>(kv_at_level(1).file_index);
  const std::string path = std::string(gx_view(gx_files.filear[top].dirname)) + "/hierarchy";
  const auto not_written = [&] {
    const int error = errno;  // before the lines are written
    kv_refuse(list_hierarchy_words, command, "# !! Error : File not written ? ", 3);
    gx_tell_detail("# !! ", path, " : ", x_why_unwritten(error));
  };
  x_file file = x_create_file(path, false);
  if (!file) return not_written();
  const gx_list_batch_t batch;
  hierarchy_lister lister(drawings, file.get());
  lister.list(*component, root->path, root->cell);
  if (lister.is_full()) gx_tell("# ... and more ");
  if (const bool is_closed = x_close(std::move(file)); !lister.is_written() || !is_closed)
    return not_written();
  kv_echo(" LIST HIErarchy ", command, 3);
}

constexpr kv_command_row_t hierarchy_rows[] = {
    {{"LIST", "HIE"}, "LIST HIErarchy [path]", kv_list_hierarchy_cmd, list_hierarchy_words, 3},
};

}  // namespace

kv_command_rows_t kv_hierarchy_commands() { return hierarchy_rows; }
