#include "import/division.h"

void gxi_divide(gxi_design_t&) {}
