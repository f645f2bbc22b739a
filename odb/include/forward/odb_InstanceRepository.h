// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_InstanceRepository.
#pragma once
#include <odb_Instance.h>
