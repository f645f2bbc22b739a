// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SequencePretensionSection.
#pragma once
#include <odb_PretensionSection.h>
