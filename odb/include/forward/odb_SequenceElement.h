// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequenceElement.
#pragma once
#include <odb_Element.h>
