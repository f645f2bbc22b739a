// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceFieldOutput.
#pragma once

#include <odb_FieldOutput.h>
