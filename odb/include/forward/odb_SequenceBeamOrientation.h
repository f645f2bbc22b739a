// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceBeamOrientation.
#pragma once
#include <odb_Orientations.h>
