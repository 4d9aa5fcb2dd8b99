// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_CORPUS_SEEDED_H
#define KRAVOLTIX_TESTS_CORPUS_SEEDED_H

#include <cstdint>
#include <string>

// Games made of numbers.
namespace corpus {

// A game as a scenario: options, frame times, keys and its end follow from the seed alone, on every
// machine. A change of this function is another corpus: its whole table must be written anew then.
std::string scenarioOf(std::uint32_t seed);

}  // namespace corpus

#endif
