// SPDX-License-Identifier: BSD-3-Clause
// Connector section data of model/connectors.h.
#include "model/connectors.h"

#include <string>

#include "model/put.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

constexpr std::int32_t kConnectorCode = -3;
constexpr const char* kAssemblyPrefix = "ASSEMBLY_";

bool isForSection(const std::string& regionName, std::string_view sectionName) {
  return regionName == sectionName || kAssemblyPrefix + regionName == sectionName;
}

// Region name and the two coordinate systems, empty where the orientation has none.
void putOrientation(const odb_ConnectorOrientation& orientation, const std::string& regionName) {
  putText(regionName, 12);
  putString(sdk::hasCsys1(orientation) ? orientation.csys1().name() : odb_String(), 8);
  putString(sdk::hasCsys2(orientation) ? orientation.csys2().name() : odb_String(), 4);
}

}  // namespace

// Connector section data.
//   size   content
//   4      -3
//   4+n    region name of the orientation; u32 0 when there is no orientation
//   4+n    first coordinate system          only with an orientation
//   4+n    second coordinate system         only with an orientation
//   4      0
void putConnectorSection(odb_Assembly& assembly, std::string_view sectionName) {
  putI32(kConnectorCode);
  const odb_SequenceConnectorOrientation& orientations = assembly.connectorOrientations();
  const int n = orientations.size();
  int i = 0;
  for (; i < n; ++i) {
    const odb_Set region = orientations[i].region();
    const std::string regionName = region.name().CStr();
    if (!isForSection(regionName, sectionName)) continue;
    putOrientation(orientations[i], regionName);
    break;
  }
  if (i == n) putText("");
  putU32(0);
}

}  // namespace odbs
