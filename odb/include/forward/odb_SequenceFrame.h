// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceFrame.
#pragma once
#include <odb_Frame.h>
