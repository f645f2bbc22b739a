// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SetRepository.
#pragma once
#include <odb_Set.h>
