// SPDX-License-Identifier: BSD-3-Clause
// Receiver of progress reports. No function of this library reports progress; the class is here for
// programs that derive from it.
#pragma once

class odb_WipReporter {
 public:
  virtual ~odb_WipReporter() = default;
};
