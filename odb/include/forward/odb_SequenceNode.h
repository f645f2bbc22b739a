// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceNode.
#pragma once
#include <odb_Node.h>
