// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kseO_GasketSection.
#pragma once
#include <odb_SectionTypes.h>
