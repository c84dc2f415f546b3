// The fields of objects as words of a description, "FIELD=VALUE", and back. Numbers and places are
// those of the file: design units, not grid steps. An object is named by its label, "@LABEL", none
// by "0".
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "gx/db/file/record_tables.h"

// Whether a description may say the field: not where the number, type and state of an object say it
// already.
bool gxm_is_said(const gx_field_t& field);

// The field of that name that may be said, of a table or of the objects of a type; else nullptr.
const gx_field_t* gxm_find_field(gx_fields_t fields, std::string_view name);
const gx_field_t* gxm_find_field(gx_type type, std::string_view name);

// The value as a word, quoted where a word needs it; `label` gives the label of an object.
std::string gxm_field_word(const void* record, const gx_field_t& field,
                           const std::function<std::string(int)>& label);

// Puts the value of a word into the record; false when it is no value of the field. `id` gives the
// id of an object by its label, 0 when there is none.
bool gxm_put_word(void* record, const gx_field_t& field, std::string_view word,
                  const std::function<int(std::string_view)>& id);

// A word that reads back as the text.
std::string gxm_quoted(std::string_view text);
// "x,y" in design units.
std::optional<gx_pointreal_t> gxm_place(std::string_view word);
