// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_PointSection.
#pragma once
#include <odb_SectionTypes.h>
