// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kseO_PointSection.
#pragma once
#include <odb_SectionTypes.h>
