// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_PartRepository.
#pragma once
#include <odb_Part.h>
