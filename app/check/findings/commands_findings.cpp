// CHEck DESign and what is done with its findings: RULe, SHOw FINding, NEXt FINding, WAIve FINding.
#include <algorithm>
#include <optional>
#include <string>

#include "app/check/design_check.h"
#include "app/check/findings/findings_file.h"
#include "app/check/findings/listed_places.h"
#include "app/check/findings/waivers.h"
#include "app/find/go_to.h"
#include "app/language/answers.h"
#include "app/language/command_row.h"
#include "app/run/run_progress.h"
#include "expand/store.h"
#include "gx/text/at.h"
#include "gx/text/date.h"
#include "gx/text/messages/message_list.h"
#include "gx/text/numbers.h"
#include "gx/text/strings.h"
#include "gx/vext.h"

namespace {

constexpr std::string_view check_echo = "# CHEck  DESign  ";
constexpr std::string_view no_findings = "# !! Error : No findings of CHEck DESign ? ";
constexpr std::string_view bad_third = "# !! Error :  3rd parameter incorrect ? ";

gx_line_kind kind_of(const kv_finding_t& finding) {
  if (finding.waived) return gx_line_kind::plain;
  return finding.severity == kv_severity::error ? gx_line_kind::error : gx_line_kind::warning;
}

// "# 12 Error no-driver /XR/N_5".
std::string head_of(std::size_t number) {
  const auto& finding = kv_pext.findings[number - 1];
  std::string head = "# " + std::to_string(number) + " ";
  head += finding.waived ? "Waived" : kv_severity_name(finding.severity);
  head.append(" ").append(kv_row_of(finding.rule).name).append(" ").append(finding.path);
  return head;
}

void record_finding(std::size_t number) {
  const auto& f = kv_pext.findings[number - 1];
  kv_record("finding", {{"number", number},
                        {"severity", kv_severity_word(f.severity)},
                        {"rule", kv_row_of(f.rule).name},
                        {"path", f.path},
                        {"sheet", f.sheet},
                        {"object_id", f.object_id},
                        {"words", f.words},
                        {"waived", f.waived}});
}

// What nobody waived counts for the session.
void tell_finding(std::size_t number) {
  const auto& finding = kv_pext.findings[number - 1];
  gx_tell_wrapped(head_of(number) + " : " + finding.words, kind_of(finding));
  gx_count_kind(kind_of(finding));
  record_finding(number);
}

// What it is, then its words.
void show_finding(std::size_t number) {
  const auto& finding = kv_pext.findings[number - 1];
  gx_tell_wrapped(head_of(number), kind_of(finding));
  gx_tell_wrapped("#    " + finding.words, gx_line_kind::detail);
  record_finding(number);
}

void show_place(std::size_t number) {
  const auto& place = kv_pext.listed_places[number - 1];
  gx_tell("# ", std::to_string(number), " ", place.path);
  gx_tell_wrapped("#    " + place.words, gx_line_kind::detail);
}

// --- CHEck DESign

std::string design_directory() {
  const auto top = kv_pext.arrayof_file.front().file_index;
  return std::string(gx_view(gx_at(gx_vext.filear, top).dirname));
}

void tell_count(std::string_view one, std::string_view many, int count) {
  gx_tell("# CHEck  DESign > ", count < 2 ? one : many, std::to_string(count), " ");
}

// Lists every finding and their number.
void tell_findings() {
  const gx_list_batch_t batch;
  int errors = 0, warnings = 0, waived = 0;
  for (std::size_t number = 1; number <= kv_pext.findings.size(); ++number) {
    const auto& finding = kv_pext.findings[number - 1];
    tell_finding(number);
    const bool is_error = finding.severity == kv_severity::error;
    ++(finding.waived ? waived : is_error ? errors : warnings);
  }
  kv_record("counts", {{"errors", errors}, {"warnings", warnings}, {"waived", waived}});
  tell_count("nb_error    = ", "nb_errors   = ", errors);
  tell_count("nb_warning  = ", "nb_warnings = ", warnings);
  tell_count("nb_waived   = ", "nb_waived   = ", waived);
}

void apply_waivers(const std::string& directory) {
  const kv_waivers_t read = kv_read_waivers(directory);
  for (const auto& fault : read.faults)
    gx_tell_wrapped("# !! Warning : " + fault, gx_line_kind::warning);
  for (const auto& idle : kv_apply_waivers(read.waivers, kv_pext.findings)) {
    if (kv_severity_of(kv_pext.severities, idle.rule) == kv_severity::off) continue;
    gx_tell_wrapped("# !! Warning : waivers:" + std::to_string(idle.line) +
                        " : matches no finding : " + std::string(kv_row_of(idle.rule).name) + " " +
                        idle.path,
                    gx_line_kind::warning);
  }
}

// The forms besides findings.json, by the words; nothing for another word.
struct forms_t {
  bool sarif = false, junit = false;
};
std::optional<forms_t> wanted_forms(const kv_command_t& command) {
  forms_t forms;
  for (int n = 3; n <= command.count(); ++n) {
    const bool is_sarif = gx_equal("SAR", command.word(n)),
               is_junit = gx_equal("JUN", command.word(n));
    if (!is_sarif && !is_junit) return std::nullopt;
    forms.sarif |= is_sarif;
    forms.junit |= is_junit;
  }
  return forms;
}

void write_findings(const std::string& directory, std::string_view file, const std::string& text) {
  if (const auto fault = kv_write_findings(directory, file, text); !fault.empty())
    gx_report(gx_line_kind::error, "# !! Error : ", file, " not written : ", fault);
}

void kv_check_design_cmd(const kv_command_t& command) {
  const auto wanted = wanted_forms(command);
  if (!wanted) return kv_refuse(check_echo, command, bad_third, 3);
  const forms_t forms = *wanted;
  const auto top = kv_pext.arrayof_file.front().file_index;
  if (top < 1 || top > gx_max_files) {
    return kv_refuse(check_echo, command, "# !! Error : No Valid current sheet ? : ", 3);
  }
  const auto& slot = gx_at(gx_vext.filear, top);
  auto check =
      kv_check_design(kv_sext, gx_view(slot.file_pathname), kv_pext.severities, kv_watch_run);
  kv_echo(check_echo, command, 3);
  if (!check.fault.empty()) {
    // Nothing is known of the design.
    return gx_report(gx_line_kind::error, "# !! Error : ", check.fault);
  }
  kv_pext.findings = std::move(check.findings);
  kv_begin_list(kv_listed::findings);
  kv_pext.design_checked = true;
  const std::string directory = design_directory();
  apply_waivers(directory);
  tell_findings();
  write_findings(directory, "findings.json", kv_findings_json(kv_pext.findings));
  if (forms.sarif) write_findings(directory, "findings.sarif", kv_findings_sarif(kv_pext.findings));
  if (forms.junit)
    write_findings(directory, "findings.xml",
                   kv_findings_junit(kv_pext.findings, kv_pext.severities));
  kv_echo(" CHEck  DESign ", command, 3);
}

// --- RULe

void kv_rule_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# RULe ";
  if (command.count() == 1) {
    constexpr std::size_t name_width = 17, severity_width = 8;
    for (const auto& row : kv_rules()) {
      std::string name(row.name);
      std::string severity(kv_severity_name(kv_severity_of(kv_pext.severities, row.rule)));
      name.resize(name_width, ' ');
      severity.resize(severity_width, ' ');
      gx_tell_wrapped("# " + name + severity + std::string(row.meaning));
      kv_record("rule",
                {{"name", row.name},
                 {"severity", kv_severity_word(kv_severity_of(kv_pext.severities, row.rule))},
                 {"meaning", row.meaning}});
    }
    return gx_tell(" RULe ");
  }
  const auto rule = kv_rule_named(command.word(2));
  if (!rule) return kv_refuse(refused, command, kv_bad_second);
  constexpr std::pair<std::string_view, kv_severity> words[] = {
      {"ERR", kv_severity::error}, {"WAR", kv_severity::warning}, {"OFF", kv_severity::off}};
  for (const auto& [word, severity] : words) {
    if (!gx_equal(word, command.word(3))) continue;
    gx_at(kv_pext.severities, *rule) = severity;
    return kv_echo(" RULe ", command);
  }
  kv_refuse(refused, command, bad_third);
}

// --- the findings one by one

bool lists_findings() { return kv_pext.listed == kv_listed::findings; }

std::size_t nb_of_findings() {
  return lists_findings() ? kv_pext.findings.size() : kv_pext.listed_places.size();
}

// The command whose list SHOw and NEXt FINding walk through.
std::string_view listing_command() {
  constexpr std::string_view names[] = {"CHEck DESign", "LIST DEVices", "DIFference DESign"};
  return gx_at(names, kv_pext.listed);
}

// The number that word 3 is; 0 after the refusal.
std::size_t finding_number(std::string_view refused, const kv_command_t& command) {
  const auto number = gx_string_to_int32(command.word(3));
  if (!number.error && number.value >= 1 &&
      static_cast<std::size_t>(number.value) <= nb_of_findings()) {
    return static_cast<std::size_t>(number.value);
  }
  kv_refuse(refused, command, bad_third, 3);
  return 0;
}

// True after the refusal.
bool lacks_findings(std::string_view refused, const kv_command_t& command) {
  if (nb_of_findings() > 0) return false;
  if (kv_pext.design_checked || !lists_findings()) {
    kv_warn(refused, command,
            "# !! Warning : " + std::string(listing_command()) + " found nothing ", 3);
  } else {
    kv_refuse(refused, command, no_findings, 3);
  }
  return true;
}

void go_to(std::size_t number, std::string_view keyword, const kv_command_t& command) {
  kv_pext.finding_shown = number;
  std::string fault;
  if (!lists_findings()) {
    const auto& place = kv_pext.listed_places[number - 1];
    show_place(number);
    fault = kv_go_to(place.at, place.object_id);
  } else {
    const auto& finding = kv_pext.findings[number - 1];
    show_finding(number);
    fault = kv_go_to(finding.at, finding.object_id);
  }
  if (!fault.empty()) {
    return kv_refuse("#" + std::string(keyword), command, "# !! Error : " + fault, 3);
  }
  gx_tell(keyword, std::to_string(number), " ");
}

void kv_show_finding_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# SHOw FINding ";
  if (lacks_findings(refused, command)) return;
  std::size_t number = kv_pext.finding_shown == 0 ? 1 : kv_pext.finding_shown;
  if (command.count() == 3 && (number = finding_number(refused, command)) == 0) return;
  go_to(number, " SHOw FINding ", command);
}

void kv_next_finding_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# NEXt FINding ";
  if (lacks_findings(refused, command)) return;
  for (std::size_t number = kv_pext.finding_shown + 1; number <= nb_of_findings(); ++number) {
    const bool is_passed = lists_findings() && kv_pext.findings[number - 1].waived;
    if (!is_passed) return go_to(number, " NEXt FINding ", command);
  }
  kv_warn(refused, command, "# !! Warning : No more findings ", 3);
}

std::string today() {
  const gx_date_t date = gx_get_date();
  const auto two = [](int number) { return (number < 10 ? "-0" : "-") + std::to_string(number); };
  return std::to_string(date.year) + two(date.month) + two(date.day);
}

std::string_view without_quotes(std::string_view word) {
  const bool is_quoted = word.size() >= 2 && (word.front() == '"' || word.front() == '\'') &&
                         word.front() == word.back();
  return is_quoted ? word.substr(1, word.size() - 2) : word;
}

void kv_waive_finding_cmd(const kv_command_t& command) {
  constexpr std::string_view refused = "# WAIve FINding ";
  if (lacks_findings(refused, command)) return;
  if (!lists_findings()) {
    return kv_refuse(refused, command,
                     kv_pext.listed == kv_listed::devices
                         ? "# !! Error : Devices of LIST DEVices are no findings ? "
                         : "# !! Error : Changes of DIFference DESign are no findings ? ",
                     3);
  }
  const std::size_t number = finding_number(refused, command);
  if (number == 0) return;
  auto& finding = kv_pext.findings[number - 1];
  if (finding.waived) {
    return kv_warn(refused, command, "# !! Warning : This finding is waived ", 3);
  }
  std::string reason;
  for (int n = 4; n <= command.count(); ++n) {
    if (n > 4) reason += ' ';
    reason += without_quotes(command.word(n));
  }
  const kv_waiver_t waiver{finding.rule, finding.path, reason, today()};
  if (const auto fault = kv_add_waiver(design_directory(), waiver); !fault.empty()) {
    return kv_refuse(refused, command, "# !! Error : waivers not written : " + fault, 3);
  }
  finding.waived = true;
  kv_echo(" WAIve FINding ", command, 3);
}

constexpr kv_command_row_t finding_rows[] = {
    // clang-format off
    {{"CHE", "DES"}, "CHEck DESign [SARif] [JUNit]", kv_check_design_cmd, check_echo, 3},
    {{"RUL"}, "RULe [name ERRor or WARning or OFF]", kv_rule_cmd, "# RULe "},
    {{"SHO", "FIN"}, "SHOw FINding [n]", kv_show_finding_cmd, "# SHOw FINding ", 3},
    {{"NEX", "FIN"}, "NEXt FINding", kv_next_finding_cmd, "# NEXt FINding ", 3},
    {{"WAI", "FIN"}, "WAIve FINding n reason ...", kv_waive_finding_cmd, "# WAIve FINding ", 3},
    // clang-format on
};

}  // namespace

kv_command_rows_t kv_finding_commands() { return finding_rows; }
