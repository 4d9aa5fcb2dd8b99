// SPDX-License-Identifier: MIT
#ifndef KRAVOLTIX_TESTS_SUPPORT_CAPTURE_H
#define KRAVOLTIX_TESTS_SUPPORT_CAPTURE_H

#include <functional>
#include <string>

// What `action` writes to standard output (or standard error), taken at the descriptor, so that
// puts, printf and everything below them are seen.
std::string capturedOutput(const std::function<void()>& action);
std::string capturedError(const std::function<void()>& action);

#endif
