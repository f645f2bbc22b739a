// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceFieldValue.
#pragma once

#include <odb_FieldValue.h>
