// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_DiscreteEntity.
#pragma once
#include <odb_Part.h>
