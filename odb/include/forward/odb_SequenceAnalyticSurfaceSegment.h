// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceAnalyticSurfaceSegment.
#pragma once
#include <odb_RigidBody.h>
