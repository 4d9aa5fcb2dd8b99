// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_FUZZ_COUNTS_H
#define KRAVOLTIX_TESTS_FUZZ_COUNTS_H

namespace fuzz {

// Counts one more input, and so many frames in it, in the file that the environment variable
// KRAVOLTIX_FUZZ_COUNTS names; without it nothing is counted. The file is mapped, so that the
// numbers outlive a crash. It holds two numbers of 64 bits, inputs and frames.
void count(unsigned long long frames);

}  // namespace fuzz

#endif
