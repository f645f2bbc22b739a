// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_HistoryPoint.
#pragma once

#include <odb_HistoryRegion.h>
