// What the simulator at the other end answers: lines of a FIFO, which come into the list.
#pragma once

#include <string>

// The FIFO of answers in the directory of the primary sheet, opened when it is there; -1: none.
int kv_answer_descriptor();
// Reads what is there: whole lines are told, and values that are shown are drawn again.
void kv_read_answers();

// Where kivo-ngspice writes the results of the design; "" without a sheet.
std::string kv_results_of_link();
