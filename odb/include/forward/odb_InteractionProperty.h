// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_InteractionProperty.
#pragma once
#include <odb_Interaction.h>
