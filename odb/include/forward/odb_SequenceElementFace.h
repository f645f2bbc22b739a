// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceElementFace.
#pragma once
#include <odb_Sequences.h>
