// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_Exception.
#pragma once
#include <nex_Exception.h>
