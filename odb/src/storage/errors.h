// SPDX-License-Identifier: BSD-3-Clause
// How the engine fails: one exception type, with a number that says whose fault it is.
#pragma once

#include <nex_Exception.h>

#include <string>

namespace odbs::engine {

// `number` is one of odb_ErrorNumber.
[[noreturn]] void fail(int number, const std::string& message);

// A call that its arguments or the object's state do not allow.
[[noreturn]] void failUsage(const std::string& message);
// The object asked for does not exist.
[[noreturn]] void failAbsent(const std::string& message);
// The database contradicts itself.
[[noreturn]] void failDamaged(const std::string& message);

}  // namespace odbs::engine
