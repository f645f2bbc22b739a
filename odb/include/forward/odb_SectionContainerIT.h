// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SectionContainerIT.
#pragma once
#include <odb_Section.h>
