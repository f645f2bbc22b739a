// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_DatumCsysRepositoryIT.
#pragma once
#include <odb_DatumCsys.h>
