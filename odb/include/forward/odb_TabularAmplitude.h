// SPDX-License-Identifier: BSD-3-Clause
// Forwards to the header that declares odb_TabularAmplitude.
#pragma once
#include <odb_Amplitude.h>
