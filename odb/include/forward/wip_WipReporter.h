// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_WipReporter.
#pragma once
#include <odb_WipReporter.h>
