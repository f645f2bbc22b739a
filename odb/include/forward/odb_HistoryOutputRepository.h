// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_HistoryOutputRepository.
#pragma once

#include <odb_HistoryRegion.h>
