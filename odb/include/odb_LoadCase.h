// SPDX-License-Identifier: BSD-3-Clause
// Load cases of a step.
#pragma once

#include <odb_Orientations.h>

namespace odbs {
namespace engine {
struct LoadCaseData;
}
}  // namespace odbs

class odb_LoadCase : public odbs::Handle<odbs::engine::LoadCaseData> {
 public:
  using Handle::Handle;
  // Empty for a default-constructed object, which means "no load case".
  const odb_String& name() const;
};

ODBS_REPOSITORY(odb_LoadCaseRepository, odb_LoadCase);
ODBS_OBJECT_SEQUENCE(odb_SequenceLoadCase, odb_LoadCase);
