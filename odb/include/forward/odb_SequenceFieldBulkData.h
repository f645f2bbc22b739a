// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceFieldBulkData.
#pragma once

#include <odb_FieldBulkData.h>
