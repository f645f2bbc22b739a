// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_PartRepositoryIT.
#pragma once
#include <odb_Part.h>
