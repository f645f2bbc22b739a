// SPDX-License-Identifier: BSD-3-Clause
// A database as text, read through the public functions alone.
#pragma once

#include <odb_API.h>

#include <string>

namespace odbs::test {

// One line an object, with all that it says. Equal texts mean equal databases.
std::string readEverything(odb_Odb& odb);

}  // namespace odbs::test
