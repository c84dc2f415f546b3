// All that is done with the text records.
#pragma once

#include "gx/text/string_checks.h"
#include "gx/text/string_compare.h"
#include "gx/text/string_copies.h"
