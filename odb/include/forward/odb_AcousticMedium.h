// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_AcousticMedium.
#pragma once
#include <odb_MaterialTypes.h>
