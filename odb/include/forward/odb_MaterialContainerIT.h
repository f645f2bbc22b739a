// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_MaterialContainerIT.
#pragma once
#include <odb_MaterialTypes.h>
