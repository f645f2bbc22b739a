// SPDX-License-Identifier: BSD-3-Clause
// The solver's status messages of an explicit analysis. This library stores none, and no function
// gives any.
#pragma once

#include <odb_engine/sequence.h>

class odb_XplStatus {
 public:
  bool operator==(const odb_XplStatus&) const { return true; }
};

class odb_SequenceXplStatus : public odbs::SequenceOf<odb_XplStatus> {
 public:
  using SequenceOf::SequenceOf;
};
