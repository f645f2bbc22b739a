// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kseO_HomogeneousShellSection.
#pragma once
#include <odb_SectionTypes.h>
