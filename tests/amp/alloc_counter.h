// Counts every operator new in this program, including those made by the loaded plug-in (the
// test program exports its operator new, so the library binds to it).
#pragma once

#include <atomic>

namespace amp_test {
extern std::atomic<long> allocations;
}  // namespace amp_test
