// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kseO_CohesiveSection.
#pragma once
#include <odb_SectionTypes.h>
