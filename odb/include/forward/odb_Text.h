// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_Text.
#pragma once
#include <odb_UserData.h>
