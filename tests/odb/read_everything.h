// SPDX-License-Identifier: BSD-3-Clause
// Reads all that a database offers, as far as it goes without an exception.
#pragma once

#include <odb_API.h>

namespace odbs::test {

// Returns a sum over everything read, so that no read can be left out. Throws what the library
// throws.
double readEverything(odb_Odb& odb);

}  // namespace odbs::test
