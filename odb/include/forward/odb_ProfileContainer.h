// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_ProfileContainer.
#pragma once
#include <odb_SectionTypes.h>
