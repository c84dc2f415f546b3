// The commands that talk to the simulator: SENd passes the user's words on, GIVE asks for a plot of
// the selected nets and pins under their flat names.
#include <optional>
#include <string>

#include "app/language/command_row.h"
#include "app/values/answers.h"
#include "expand/net_names.h"
#include "expand/sim_request.h"
#include "expand/store.h"
#include "gx/db/owners.h"
#include "gx/db/queries.h"
#include "gx/display/window.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/strings.h"
#include "netlist/simulator_names.h"

namespace {

constexpr int max_keywords = 16;
constexpr std::string_view send_syntax = "SENd word ...";
// First letters of the instances that the simulator knows. X, a sub-circuit, has a template for
// its pins.
constexpr std::string_view element_letters = "ACEFGHILMNQRSVWX";

// The value without the quotes or apostrophes around it.
std::string_view without_quotes(std::string_view value) {
  constexpr std::string_view quotes = "\"'";
  const auto first = value.find_first_not_of(quotes);
  if (first == std::string_view::npos) return {};
  return value.substr(first, value.find_last_not_of(quotes) - first + 1);
}

// A request for a plot that grows by one item for each selected net and pin.
class plot_request {
 public:
  plot_request(const kv_command_t& command, const gx_file_gene_recf_t& file)
      : command_(command), file_(file) {}

  void add_net(int net);
  void add_pins(int inst);
  const std::string& text() const { return text_; }

 private:
  std::string_view sheet_path() const { return gx_view(kv_pext.cur_sim_path); }
  void add_item(std::string_view item);
  void add_pin(std::string_view inst_name, std::string_view pin_name);
  void add_subcircuit_pin(gx_pin_pair_t pair, std::string_view inst_name,
                          std::string_view pin_name);

  const kv_command_t& command_;
  const gx_file_gene_recf_t& file_;
  std::string text_ = "plot ";
  std::optional<kv_simulator_names_t<kv_design_t>> names_;  // of nets; made for the first
};

void plot_request::add_item(std::string_view item) {
  if (command_.count() == 2) {
    text_.append(command_.word(2)).append("(").append(item).append(")");
  } else {
    text_.append(item);
  }
  text_ += ' ';
}

void plot_request::add_net(int net) {
  const std::string name = lb_net_name(file_, net);
  const std::int32_t flat_net = kv_find_net_rel(sheet_path(), name);
  if (flat_net == 0) {
    kv_refuse("# Give ", command_, "# !! Error : Net NOT FOUND ? ");
    return gx_tell_detail("# Net : \"", name, "\"");
  }
  if (!names_) names_.emplace(kv_memory_netlist_t(kv_sext));
  add_item(names_->of(flat_net));
}

void tell_pin_not_found(std::string_view inst_name, std::string_view pin_name) {
  gx_tell_as(gx_line_kind::error, "# !! Error :  Pin NOT FOUND in Data Base? ");
  gx_tell_detail("# INST : \"", inst_name, "\" PIN : \"", pin_name, "\"");
}

void plot_request::add_pin(std::string_view inst_name, std::string_view pin_name) {
  const std::int32_t flat_pin = kv_find_pin_rel(sheet_path(), inst_name, pin_name);
  if (flat_pin == 0) return tell_pin_not_found(inst_name, pin_name);
  add_item(kv_simulator_name(kv_string_view(kv_ptrto_pin_rec(flat_pin).sim_path)));
}

// The pin's IMAC property is a template in which "*" stands for the instance.
void plot_request::add_subcircuit_pin(gx_pin_pair_t pair, std::string_view inst_name,
                                      std::string_view pin_name) {
  if (kv_find_pin_rel(sheet_path(), inst_name, pin_name) == 0 &&
      kv_find_pinm_rel(sheet_path(), inst_name, pin_name) == 0) {
    return tell_pin_not_found(inst_name, pin_name);
  }
  auto imac = lb_get_valueof_prop_pinpropfam(file_, pair.pinpropfam, "IMAC");
  if (!imac) imac = lb_get_valueof_prop_pin(file_, pair.pin, "IMAC");
  const std::string_view shape = imac ? without_quotes(gx_view(*imac)) : std::string_view();
  if (shape.empty()) {
    return gx_tell_as(gx_line_kind::warning,
                      "# !! Warning : No Valid Property IMAC on selected pin(s) of INSTance '",
                      inst_name, "' ", " PIN : '", pin_name, "' ?");
  }
  const std::string instance =
      kv_simulator_name(std::string(sheet_path()) + std::string(inst_name));
  std::string item;
  for (const char c : shape) {
    if (c == '*') {
      item += instance;
    } else {
      item += c;
    }
  }
  add_item(item);
}

void plot_request::add_pins(int inst) {
  const std::string inst_name = lb_inst_name(file_, inst);
  const char letter = gx_upper_case(inst_name.front());
  if (element_letters.find(letter) == std::string_view::npos) return;
  bool any_selected = false, any_named = false;
  for (const gx_pin_pair_t pair : lb_pins(file_, inst)) {
    if (gx_inq_object_deleted(file_, pair.pinpropfam) ||
        !gx_inq_object_selected(file_, pair.pinpropfam))
      continue;
    any_selected = true;
    auto name = lb_get_valueof_prop_pin(file_, pair.pin, "PIN");
    if (!name) name = lb_get_valueof_prop_pinpropfam(file_, pair.pinpropfam, "PIN");
    if (!name || name->len == 0) {
      gx_tell_as(gx_line_kind::error, "# !! Error : Property 'PIN' NOT FOUND on pin selected ? ");
      gx_tell_detail("# INST : \"", inst_name, "\" Pin selected : \"P_",
                     std::to_string(pair.pinpropfam), "\"");
      continue;
    }
    any_named = true;
    if (letter == 'X') {
      add_subcircuit_pin(pair, inst_name, gx_view(*name));
    } else {
      add_pin(inst_name, gx_view(*name));
    }
  }
  if (any_selected && !any_named) {
    gx_tell_as(gx_line_kind::warning,
               "# !! Warning : No Valid Property Pin on selected pin(s) of the INSTance '",
               inst_name, "' ?");
  }
}

void refuse_send(std::string_view keyword, const kv_command_t& command, std::string_view error,
                 int first) {
  kv_pext.save_to_do = false;
  kv_refuse(keyword, command, error, first);
  gx_tell(command.count() < 2 ? "# SEND : at least 1 Keyword per Request ..."
                              : "# SEND : limited to 16 Keywords per Request ...");
}

void kv_send_cmd(const kv_command_t& command) {
  kv_pext.save_to_do = false;
  std::string request(command.word(2));
  for (int n = 3; n <= command.count(); ++n) request.append(" ").append(command.word(n));
  gx_sync();
  kv_ask_simulator(request);
  kv_echo(" SENd ", command);
}

void kv_give_cmd(const kv_command_t& command) {
  std::string request = "plot ";
  if (kv_pext.file_id_cur != 0) {
    const auto& file = gx_ptrto_gene_file_buf(kv_pext.file_id_cur);
    plot_request plot(command, file);
    for (int id = 1; id <= file.object_id_max; ++id) {
      const bool is_net = gx_object_id_ptr(file, id).object_type == gx_type::net;
      if (is_net && !gx_inq_object_deleted(file, id) && gx_inq_object_selected(file, id))
        plot.add_net(id);
    }
    for (const int inst : lb_instances(file)) {
      if (!gx_inq_object_deleted(file, inst)) plot.add_pins(inst);
    }
    request = plot.text();
  }
  gx_sync();
  kv_ask_simulator(request);
  kv_echo(" GIVE ", command);
}

constexpr kv_command_row_t simulator_rows[] = {
    // clang-format off
    {{"GIV"}, "GIVE [function]", kv_give_cmd, "# GIVE "},
    {{"G"}, "GIVE [function]", kv_give_cmd, "# GIVE ", 2, 1},
    {.keywords = {"SEN"}, .syntax = send_syntax, .handler = kv_send_cmd, .refusal = "# SEND ", .counts = kv_counts_of(send_syntax) & kv_at_most(max_keywords + 1), .refuse = refuse_send},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_simulator_commands() { return simulator_rows; }
