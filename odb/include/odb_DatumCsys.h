// SPDX-License-Identifier: BSD-3-Clause
// Datum coordinate systems.
#pragma once

#include <odb_Enum.h>
#include <odb_String.h>
#include <odb_engine/handle.h>
#include <odb_engine/repository.h>

namespace odbs {
namespace engine {
struct CsysData;
}
}  // namespace odbs

class odb_DatumCsys : public odbs::Handle<odbs::engine::CsysData> {
 public:
  using Handle::Handle;
  // Empty for a default-constructed object, which means "none".
  const odb_String& name() const;
  odb_Enum::odb_DatumCsysTypeEnum type() const;
  // Unit vectors of the axes and the origin, 3 numbers each.
  const float* xAxis() const;
  const float* yAxis() const;
  const float* zAxis() const;
  const float* origin() const;
};

ODBS_REPOSITORY(odb_DatumCsysRepository, odb_DatumCsys);
