// Commands that steer the session: questions, the command line, switches, pictures in files, and
// the end.
#include <algorithm>
#include <cerrno>

#include "app/hint/hint.h"
#include "app/language/command_row.h"
#include "app/language/substitution.h"
#include "app/session/input/display_settings.h"
#include "app/session/input/event_loop.h"
#include "app/session/input/gestures.h"
#include "app/session/input/menu_actions.h"
#include "app/session/input/recall.h"
#include "app/session/input/tab_key.h"
#include "app/sheet/views.h"
#include "app/state.h"
#include "gx/db/object_access.h"
#include "gx/display/input/events.h"
#include "gx/display/input/line_edit.h"
#include "gx/display/input/menu_draw.h"
#include "gx/display/sheet/theme.h"
#include "gx/text/at.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/string_compare.h"
#include "gx/text/strings.h"
#include "gx/vector/pdf_picture.h"
#include "gx/vector/svg_picture.h"
#include "gx/vext.h"
#include "platform/files.h"

namespace {
constexpr std::string_view nobody = "# !! Error : There is no user to answer ? ";

void set_command_line(const gx_string_record_t& line) {
  gx_vext.str_cmd = line;
  gx_display_cmd(gx_view(line));
}

// Puts the question on the command line; the line that the user completes is the command of the
// answer. Returns when that line was entered.
void ask(const kv_command_t& command) {
  if (gx_vext.screen == nullptr) return kv_refuse("# READln ", command, nobody);
  gx_string_record_t line;
  gx_concat_all(line, " READln ", command.word(2), " ", command.word(3), " ");
  set_command_line(line);
  kv_array_param_t args;
  kv_process_events(false, args, command.vars);
}

void store_answer(const kv_command_t& command) {
  const kv_target_t target = kv_variable_target(command.word(2));
  if (target.kind == kv_target::out_of_range) return kv_refuse("# READln ", command, kv_bad_second);
  if (target.kind != kv_target::variable) return;
  gx_at(command.vars, target.number - 1) = command.words[3];
  kv_echo(" READln ", command);
}

// The two ends of a session differ in their name only.
void end_session(std::string_view echo) {
  gx_vext.end_flag = true;
  gx_tell(echo);
}

void kv_readln_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# READln ";
  if (!gx_equal("$VAR", command.word(2))) return kv_refuse(refused, command, kv_bad_second);
  if (command.count() == 3) return ask(command);
  store_answer(command);
}

void kv_command_cmd(const kv_command_t& command) {
  kv_echo("# COMmand ", command);
  set_command_line(kv_unquote(command.word(2)));
}

void kv_cut_before_cmd(const kv_command_t&) { gx_cut_line(gx_cut::before); }
void kv_cut_word_cmd(const kv_command_t&) { gx_cut_line(gx_cut::word); }
void kv_paste_cmd(const kv_command_t&) { gx_ask_for_text(true); }

// On the command line what another program has selected; elsewhere the menu.
void kv_paste_or_menu_cmd(const kv_command_t&) {
  if (gx_vext.viewport_id == gx_vext.viewport_cmd) return gx_ask_for_text(false);
  gx_draw_menu1(gx_vext.viewport_edit, kv_menu_position);
}

void kv_end_cmd(const kv_command_t&) { kv_end_gestures(); }
void kv_complete_cmd(const kv_command_t&) { kv_complete_typed(); }

// The mouse runs the command when it drags (app/session/input/gestures.h); who types it runs it at
// once.
void kv_drag_cmd(const kv_command_t& command) {
  std::string text;
  for (const auto& word : command.words.subspan(1)) text.append(gx_view(word)).append(" ");
  kv_process_command(gx_string(text), command.args, command.vars);
}

// Nothing is reported: the keys that run them would fill the list.
void kv_recall_back_cmd(const kv_command_t&) { kv_recall(true); }
void kv_recall_forward_cmd(const kv_command_t&) { kv_recall(false); }

void kv_display_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(2));
  if (!on) return kv_refuse("# DISplay ", command, kv_bad_second);
  gx_vext.display_on = *on;
  gx_tell(*on ? " DISplay ON " : " DISplay OFF ");
  if (!*on) return;
  kv_update_viewport_edit();
  kv_update_viewport_context();
}

void kv_display_hints_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(3));
  if (!on)
    return kv_refuse("# DISplay HINts ", command, "# !! Error :  3rd parameter incorrect ? ", 3);
  kv_show_hints(*on);
  gx_tell(*on ? " DISplay HINts ON " : " DISplay HINts OFF ");
}

// By the letters that its name has in capitals, or more of them.
const gx_theme_t* theme_named(std::string_view word) {
  for (const gx_theme_t& theme : gx_themes()) {
    const auto least = std::ranges::count_if(theme.name, [](char c) { return c <= 'Z'; });
    if (word.size() >= static_cast<std::size_t>(least) && word.size() <= theme.name.size() &&
        gx_iden(theme.name.substr(0, word.size()), word))
      return &theme;
  }
  return nullptr;
}

void kv_display_theme_cmd(const kv_command_t& command) {
  const gx_theme_t* const theme = theme_named(command.word(3));
  if (theme == nullptr)
    return kv_refuse("# DISplay THEme ", command,
                     "# !! Error : No such theme (CLAssic, DARk or LIGht) ? ", 3);
  gx_set_theme(*theme);
  if (gx_vext.screen != nullptr) kv_draw_window(false);
  gx_tell(" DISplay THEme ", theme->name, " ");
}

void kv_transcript_cmd(const kv_command_t& command) {
  const auto on = kv_on_or_off(command.word(2));
  if (!on) return kv_refuse("# TRANScript ", command, kv_bad_second);
  if (*on) {
    gx_vext.transcript_state = true;
    kv_update_viewport_edit();
    if (kv_pext.file_id_cur == kv_pext.file_id_context) kv_update_viewport_context();
    gx_tell(" TRANScript  ON ");
  } else {
    gx_tell(" TRANScript  OFF ");
    gx_vext.transcript_state = false;
  }
}

void kv_bye_cmd(const kv_command_t&) { end_session(" BYE "); }

void kv_quit_cmd(const kv_command_t&) { end_session(" QUIT "); }

// Makes no hard copy; it only answers.
void kv_hardcopy_cmd(const kv_command_t& command) { kv_echo(" HARDcopy ", command); }

// Plots are made by the net editor.
void kv_plot_cmd(const kv_command_t& command) {
  kv_refuse("# PLOt ", command, "# !! Please Use \"lorb\" to Plot .\"");
}

// The sheet in view as a picture of the format that the name ends with.
void kv_plot_file_cmd(const kv_command_t& command) {
  if (command.count() == 2) return kv_plot_cmd(command);
  constexpr std::string_view refused = "# PLOt ";
  const std::string name(kv_file_name(command.word(3)));
  const std::string ending = gx_upper(name.substr(std::min(name.rfind('.'), name.size())));
  if (ending != ".SVG" && ending != ".PDF")
    return kv_refuse(refused, command, "# !! Error : The name must end with .svg or .pdf ? ");
  const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
  if (file.primary_object == 0)
    return kv_refuse(refused, command, "# !! Error : No sheet in view ? ");
  gx_sheet_labels_t labels;
  labels.path = gx_view(kv_pext.cur_sim_path);
  if (labels.path.ends_with('/')) labels.path.pop_back();
  if (labels.path.empty())
    labels.path = gx_view(kv_pext.arrayof_file[0].file_path);
  else if (!labels.path.starts_with('/'))
    labels.path.insert(0, "/");
  labels.title = labels.path;
  std::string picture;
  if (ending == ".SVG") {
    gx_svg_page_t page;
    page.labels = labels;
    picture = gx_svg_picture(file, page);
  } else {
    gx_pdf_document document(1, gx_colours::print, *gx_paper_of("A4"), {});
    document.add_page(file, labels);
    picture = document.finish(labels.title);
  }
  if (!x_replace_file(name, picture))
    return kv_refuse(refused, command,
                     "# !! Error : Cannot write : " + x_why_unread(errno) + " ? ");
  kv_echo(" PLOt FILe ", command, 3);
}

constexpr kv_command_row_t session_rows[] = {
    // clang-format off
    {{"BYE"}, "BYE", kv_bye_cmd, "# BYE ", 2, 3},
    {{"QUIT"}, "QUIT", kv_quit_cmd, "# QUIT ", 2, 4},
    {{"READ"}, "READln $VARn prompt [answer]", kv_readln_cmd, "# READln "},
    {{"REC", "BAC"}, "RECall BACk", kv_recall_back_cmd, "# RECall BACk ", 3},
    {{"REC", "FOR"}, "RECall FORward", kv_recall_forward_cmd, "# RECall FORward ", 3},
    {{"$CUTW"}, "$CUTW", kv_cut_word_cmd},
    {{"$CUT"}, "$CUT", kv_cut_before_cmd},
    {{"$PASTE"}, "$PASTE", kv_paste_cmd},
    {{"$PDM1"}, "$PDM1", kv_paste_or_menu_cmd},
    {{"$TAB"}, "$TAB", kv_complete_cmd},
    {{"$END"}, "$END", kv_end_cmd},
    {{"$DRAG"}, "$DRAG command ...", kv_drag_cmd, "# $DRAG "},
    {{"COM"}, "COMmand text", kv_command_cmd, "# COMmand "},
    {{"DISP", "THE"}, "DISPlay THEme CLAssic or DARk or LIGht", kv_display_theme_cmd, "# DISplay THEme ", 3},
    {{"DISP", "HIN"}, "DISPlay HINts ON or OFF", kv_display_hints_cmd, "# DISplay HINts ", 3},
    {{"DISP", "SMO"}, "DISPlay SMOoth ON or OFF", kv_display_smooth_cmd, "# DISplay SMOoth ", 3},
    {{"DISP", "WID"}, "DISPlay WIDth number or AUTo", kv_display_width_cmd, "# DISplay WIDth ", 3},
    {{"DISP", "LIN"}, "DISPlay LINes number", kv_display_lines_cmd, "# DISplay LINes ", 3},
    {{"DISP", "CON"}, "DISPlay CONtext ON or OFF", kv_display_context_cmd, "# DISplay CONtext ", 3},
    {{"DISP"}, "DISPlay ON or OFF", kv_display_cmd, "# DISplay "},
    {{"TRANS", "O"}, "TRANScript ON or OFF", kv_transcript_cmd, "# TRANScript "},
    {{"HAR"}, "HARDcopy [word]", kv_hardcopy_cmd, "# HARDcopy "},
    {{"PLO", "FIL"}, "PLOt FILe [name]", kv_plot_file_cmd, "# PLOt "},
    {{"PLO"}, "PLOt [word]", kv_plot_cmd, "# PLOt "},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_session_commands() { return session_rows; }
