// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_LoadCaseRepositoryIT.
#pragma once
#include <odb_LoadCase.h>
