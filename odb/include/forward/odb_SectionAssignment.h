// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SectionAssignment.
#pragma once
#include <odb_Set.h>
