// The Tab key on the command line.
#pragma once

// Completes the word before the caret: a word of a command, or a path where the command takes one.
// What has one way on is written; where there are several, and nothing more in common, they are
// listed.
void kv_complete_typed();
