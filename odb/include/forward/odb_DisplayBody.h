// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_DisplayBody.
#pragma once
#include <odb_Constraint.h>
