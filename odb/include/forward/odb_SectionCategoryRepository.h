// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SectionCategoryRepository.
#pragma once
#include <odb_SectionCategory.h>
