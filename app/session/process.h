// What each of the program's processes begins with.
#pragma once

// The standard streams are open, and no memory left is an orderly end. First of all in main.
void kv_prepare_process();

// A simulator that goes away while a request is written is an error of that request, not the end
// of the program.
void kv_survive_broken_pipes();
