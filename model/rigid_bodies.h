// SPDX-License-Identifier: BSD-3-Clause
// The analytic surface and rigid body records of the model stream.
#pragma once

#include <odb_API.h>

namespace odbs {

// Appends the analytic surface record.
void sendAnalyticSurface(const odb_AnalyticSurface& surface, int outputFd);

// Appends one record per rigid body that has an analytic surface and a reference node; the others
// are passed over.
void sendRigidBodies(const odb_SequenceRigidBody& bodies, int outputFd);

}  // namespace odbs
