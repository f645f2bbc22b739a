// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SectionPoint.
#pragma once
#include <odb_SectionCategory.h>
