// The stand-in's record, exported as fakeEffectLog(): opcodes in call order, and handle deletions.
#pragma once

#include <vector>

namespace stand_in {

constexpr int kHandleDeleted = 1000;
using Log = std::vector<int>;

}  // namespace stand_in
