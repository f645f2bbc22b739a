// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_ConnectorOrientation.
#pragma once
#include <odb_Orientations.h>
