// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kmaO_FailStrain.
#pragma once
#include <odb_MaterialTypes.h>
