// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SetRepositoryIT.
#pragma once
#include <odb_Set.h>
