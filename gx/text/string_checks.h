// Checks and repairs of the text records (gx/text/records.h): 0..199, 0..64 and 0..96 characters of
// printable ASCII, 32..126. The records are the caller's.
#pragma once

#include "gx/text/records.h"

// Silent when the record is sound; else debug lines and the fatal stop with invalid_string. Of a
// name and a value a bad length is set to 0 before the stop.
void gx_check_string(const gx_string_record_t& string);
void gx_check_name(gx_name_record_t& name);
void gx_check_value(gx_value_record_t& value);

// Repairs a typed or read line: length to 0..198, inner newlines to ";", a final newline and all
// from a 0 byte on dropped, other bytes outside 32..126 to blanks. Never stops.
void gx_rest_string(gx_string_record_t& string);
