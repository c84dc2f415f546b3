// Requests to the simulator: one line of text each, through a FIFO that the simulator makes.
#pragma once

#include <string_view>

inline constexpr int kv_max_request = 504;  // characters of a request; more are cut
inline constexpr std::string_view kv_fifo_name = "Lorb_To_Spice_Fifo";
// What a simulator answers comes back through this one, line by line; its side makes it.
inline constexpr std::string_view kv_answer_fifo_name = "Spice_To_Kivo_Fifo";
// A line of it that ends the answer to one request.
inline constexpr std::string_view kv_answer_end = "\x04";

// The descriptor of the FIFO while a request is on its way; -1 at all other times.
extern int KivoSpice_fifo_fd;

// Sends one request, without its line end, to the FIFO in the directory of the primary sheet. An
// empty one sends nothing. When no simulator listens, or it goes away, the list says so and the
// request is lost: false. Never waits for a reader that does not read.
bool kv_send_request(std::string_view request);
