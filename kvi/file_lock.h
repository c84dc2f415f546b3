// The advisory lock by which those who read a design file and the one who writes it (KIVO, during a
// RUN, with flock's exclusive lock) keep out of each other's way.
#pragma once

#include <optional>
#include <string>

// Takes the shared lock of the open file; waits up to a second for one who writes. What keeps it
// from it, for instance "kivo (process 1234)"; nothing when the lock is held, or when the file's
// system knows no locks.
std::optional<std::string> kvi_lock_shared(int fd);
void kvi_unlock(int fd);
