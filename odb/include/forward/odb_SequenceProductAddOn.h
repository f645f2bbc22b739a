// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceProductAddOn.
#pragma once
#include <odb_Sequences.h>
