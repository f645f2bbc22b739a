// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_TrussSection.
#pragma once
#include <odb_SectionTypes.h>
