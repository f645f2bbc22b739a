// SPDX-License-Identifier: BSD-3-Clause
// The material records of the model stream.
#pragma once

#include <odb_API.h>

namespace odbs {

// Appends one material record per material of the database, in the order of its container. Does not
// flush. Throws what the database library throws.
void sendMaterials(odb_Odb& odb, int outputFd);

}  // namespace odbs
