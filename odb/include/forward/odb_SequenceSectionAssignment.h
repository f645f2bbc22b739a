// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceSectionAssignment.
#pragma once
#include <odb_Set.h>
