// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_LoadCaseRepository.
#pragma once
#include <odb_LoadCase.h>
