// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares kmaO_ApiExtension.
#pragma once
#include <odb_MaterialTypes.h>
