// SPDX-License-Identifier: BSD-3-Clause
// The section records of the model stream, and the tables from which element records take their
// section number.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

#include "model/element_sections.h"

namespace odbs {

// Appends one section record per section that is assigned to at least one element, in the order of
// the section container, and returns the tables for the element records. `instanceNames` are the
// assembly's instances in the order of the stream. Does not flush. Throws what the database library
// throws.
SectionTables sendSections(odb_Odb& odb, const std::vector<std::string>& instanceNames,
                           int outputFd);

}  // namespace odbs
