// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_ShellSolidCoupling.
#pragma once
#include <odb_Constraint.h>
