// SPDX-License-Identifier: BSD-3-Clause
// Pretension sections: declared by the API, carried by no database of this library; the sequence is
// always empty.
#pragma once

#include <odb_Orientations.h>

class odb_PretensionSection {
 public:
  bool operator==(const odb_PretensionSection&) const { return true; }
};

ODBS_OBJECT_SEQUENCE(odb_SequencePretensionSection, odb_PretensionSection);
