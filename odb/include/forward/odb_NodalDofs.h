// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_NodalDofs.
#pragma once
#include <odb_Step.h>
