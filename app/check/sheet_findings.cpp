#include "app/check/sheet_findings.h"

#include <algorithm>

#include "gx/db/file/sheet_shape.h"
#include "gx/db/queries.h"

namespace {

// The last part of an object's path, after that of its sheet, as RUN makes it.
std::string piece_of(const gx_file_gene_recf_t& file, const gx_owner_t& owner) {
  switch (owner.kind) {
    case gx_owner_kind::none:
      return "";
    case gx_owner_kind::net:
      return "/" + lb_net_name(file, owner.id);
    case gx_owner_kind::frame:
      return "/F_" + std::to_string(owner.id);
    case gx_owner_kind::body:
    case gx_owner_kind::symbol:
      return "/" + lb_inst_name(file, owner.inst);
    case gx_owner_kind::pin:
    case gx_owner_kind::symbol_pin:
      break;
  }
  gx_pin_pair_t pin{0, static_cast<gx_object_id_t>(owner.on_sheet)};
  for (const gx_pin_pair_t each : lb_pins(file, owner.inst)) {
    if (each.pinpropfam == pin.pinpropfam) pin = each;
  }
  return "/" + lb_inst_name(file, owner.inst) + "/" + lb_pin_name(file, pin);
}

void check_sheet(const gx_file_gene_recf_t& file, kv_links_t& links, kv_cell_findings_t found) {
  const std::string fault = gx_sheet_fault(file);
  if (!fault.empty()) return found.add(kv_rule::sheet_missing, "", 0, "not whole : " + fault);
  for (const auto& finding : kv_check_sheet(file, links, SIZE_MAX).findings) {
    std::string words = kv_words_of(finding);
    if (finding.more > 0) words += " and " + std::to_string(finding.more) + " more";
    found.add(finding.rule, piece_of(file, finding.where), finding.where.on_sheet,
              std::move(words));
  }
}

void check_missing(const kv_cells_t& cells, kv_cell_findings_t& found) {
  const kv_sheet_t& sheet = *found.cell.sheet;
  for (const auto& missing : cells.missing()) {
    if (missing.sheet != &sheet) continue;
    found.add(kv_rule::sheet_missing, sheet.view(missing.inst->suffix), missing.inst->object_id,
              "no sheet behind the block : " + missing.why);
  }
}

}  // namespace

void kv_cell_findings_t::add(kv_rule rule, std::string_view piece, int object_id,
                             std::string words) {
  const kv_severity severity = kv_severity_of(severities, rule);
  if (severity == kv_severity::off) return;
  std::string path = cell.path + std::string(piece);
  if (path.empty()) path = "/";
  findings.push_back({rule, severity, std::move(path), cell.path, cell.sheet->file_path, object_id,
                      std::move(words)});
}

void kv_find_on_sheets(kv_sheets_t& sheets, const kv_severities_t& severities,
                       kv_findings_t& findings, kv_electrical_marks& marks) {
  kv_links_t links;
  std::vector<kv_findings_t> of_sheets;  // by the rules of CHEck SHEet, cell by cell
  const kv_cells_t cells(sheets, [&](const kv_cell_t& cell, const gx_file_gene_recf_t& file) {
    check_sheet(file, links, {cell, severities, of_sheets.emplace_back()});
    marks.take(*cell.sheet, file);
  });
  kv_global_rules globals(cells);
  for (std::size_t i = 0; i < cells.cells().size(); ++i) {
    const kv_cell_t& cell = cells.cells()[i];
    const auto first = static_cast<std::ptrdiff_t>(findings.size());
    kv_cell_findings_t found{cell, severities, findings};
    findings.insert(findings.end(), of_sheets[i].begin(), of_sheets[i].end());
    check_missing(cells, found);
    kv_check_blocks(cells, found);
    globals.check(found);
    std::stable_sort(findings.begin() + first, findings.end(),
                     [](const auto& a, const auto& b) { return a.rule < b.rule; });
  }
}
