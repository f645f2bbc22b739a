// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_BaseException.
#pragma once
#include <nex_Exception.h>
