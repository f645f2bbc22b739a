// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_OdbRepositoryIT.
#pragma once
#include <odb_OdbRepository.h>
