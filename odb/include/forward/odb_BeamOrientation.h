// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_BeamOrientation.
#pragma once
#include <odb_Orientations.h>
