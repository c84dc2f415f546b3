// The instances of a sheet that are no ports and no globals, with their pins and symbols.
#pragma once

#include <cstdint>
#include <span>

#include "expand/setup.h"
#include "expand/sheet/net_join.h"
#include "expand/sheet/sheet_records.h"
#include "gx/db/file/file_records.h"

// Adds the parts to the sheet, whose nets and groups are known: symbol by symbol, those of a symbol
// in the order of its chain. `insts` are the object ids, in the order of the sheet.
void kv_take_parts(const gx_file_gene_recf_t& file, const kv_setup_t& setup,
                   const kv_net_table& nets, std::span<const int> insts, kv_sheet_t& sheet);

// What an instance stands for: a port or a global by its CLASS, else a part or a block.
enum class kv_inst_role : std::uint8_t { part, port, global };
kv_inst_role kv_role_of(const gx_file_gene_recf_t& file, int inst);

// Whether an instance is a primitive: the first entry of the PRIMitive list that it meets.
bool kv_found_primitive(const kv_setup_t& setup, const gx_file_gene_recf_t& file, int inst);
