// What each of the program's processes begins with.
#pragma once

// The standard streams are open, and no memory left is an orderly end. First of all in main.
void kv_prepare_process();
