// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_UserXYData.
#pragma once
#include <odb_UserData.h>
