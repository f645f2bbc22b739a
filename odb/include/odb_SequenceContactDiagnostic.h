// SPDX-License-Identifier: BSD-3-Clause
// The solver's diagnostics of contact. This library stores none, and no function gives any.
#pragma once

#include <odb_engine/sequence.h>

class odb_ContactDiagnostic {
 public:
  bool operator==(const odb_ContactDiagnostic&) const { return true; }
};

class odb_SequenceContactDiagnostic : public odbs::SequenceOf<odb_ContactDiagnostic> {
 public:
  using SequenceOf::SequenceOf;
};
