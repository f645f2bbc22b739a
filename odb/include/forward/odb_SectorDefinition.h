// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_SectorDefinition.
#pragma once
#include <odb_JobData.h>
