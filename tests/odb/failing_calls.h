// SPDX-License-Identifier: BSD-3-Clause
// Calls to the system that fail on demand (Linux).
#pragma once

namespace odbs::test {

// The n-th call of pread, pwrite, ftruncate, fsync or rename from now on fails, once, with EIO.
void failCall(const char* name, int n);
// True once it has.
bool callFailed();

}  // namespace odbs::test
