// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_HistoryRegionRepository.
#pragma once

#include <odb_HistoryRegion.h>
