// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceConnectorOrientation.
#pragma once
#include <odb_Orientations.h>
