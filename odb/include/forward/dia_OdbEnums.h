// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares the enumerations.
#pragma once
#include <odb_Enum.h>
