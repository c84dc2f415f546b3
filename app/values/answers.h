// What the simulator at the other end answers: lines of a FIFO, which come into the list.
#pragma once

#include <string>
#include <string_view>

// The FIFO of answers in the directory of the primary sheet, opened when it is there; -1: none.
int kv_answer_descriptor();
// Reads what is there: whole lines go to the list, and values that are shown are drawn again.
void kv_read_answers();

// In a batch nobody waits for lines that come later: from now on a request waits for its answer.
void kv_await_answers();
// Sends a request (expand/sim_request.h). Where answers are awaited, the lines of its answer are
// reported before it returns, or a warning after some seconds without a line.
void kv_ask_simulator(std::string_view request);

// Where kivo-ngspice writes the results of the design; "" without a sheet.
std::string kv_results_of_link();
