// SPDX-License-Identifier: BSD-3-Clause
// What a connector section carries in its section record: the orientation of its connectors.
#pragma once

#include <odb_API.h>

#include <string_view>

namespace odbs {

// Puts the connector data of the section with that full name into the record being built. The
// orientation is the first of the assembly whose region is named like the section, with or without
// "ASSEMBLY_" in front.
void putConnectorSection(odb_Assembly& assembly, std::string_view sectionName);

}  // namespace odbs
