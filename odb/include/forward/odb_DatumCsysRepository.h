// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_DatumCsysRepository.
#pragma once
#include <odb_DatumCsys.h>
