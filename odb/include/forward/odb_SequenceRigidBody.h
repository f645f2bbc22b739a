// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceRigidBody.
#pragma once
#include <odb_RigidBody.h>
