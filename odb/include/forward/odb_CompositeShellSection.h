// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_CompositeShellSection.
#pragma once
#include <odb_SectionTypes.h>
