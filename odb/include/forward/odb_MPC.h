// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_MPC.
#pragma once
#include <odb_Constraint.h>
