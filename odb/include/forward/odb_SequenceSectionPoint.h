// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceSectionPoint.
#pragma once
#include <odb_SectionCategory.h>
