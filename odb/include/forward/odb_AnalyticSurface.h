// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_AnalyticSurface.
#pragma once
#include <odb_RigidBody.h>
