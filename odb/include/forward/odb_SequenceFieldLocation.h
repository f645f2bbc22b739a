// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceFieldLocation.
#pragma once

#include <odb_FieldLocation.h>
