// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_FUZZ_STATEMAP_H
#define KRAVOLTIX_TESTS_FUZZ_STATEMAP_H

#include "driver/battlefield.h"

namespace fuzz {

// Marks where a game stands: places, energies, stocks, phases, texts and explosions, in coarse steps.
// libFuzzer takes a mark that no game before has set for new coverage, beside the code that has run,
// and keeps the input.
void markState(const BattleField& field);

// Ends the process with a message when a value is one that no game can have.
void checkState(const BattleField& field);

}  // namespace fuzz

#endif
