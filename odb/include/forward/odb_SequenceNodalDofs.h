// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceNodalDofs.
#pragma once
#include <odb_Step.h>
