// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_Tie.
#pragma once
#include <odb_Constraint.h>
