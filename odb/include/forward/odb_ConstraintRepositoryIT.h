// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_ConstraintRepositoryIT.
#pragma once
#include <odb_Constraint.h>
