// SPDX-License-Identifier: BSD-3-Clause
// The spellings of the database API that are not public, in one place and in two variants: the
// embedded library (default) and the vendor's SDK (ODBS_SDK defined). Server code uses public API
// names everywhere else. The vendor variant follows the documentation; it compiles, but it has not
// been linked with the SDK, so whoever first does that finishes it here.
#pragma once

#include <odb_API.h>
#include <odb_Enum.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// Each variant provides, in namespace odbs::sdk:
//
//   class Repository                 the open databases by key; a key is the path as it was opened
//   Repository& openDatabases()
//   bool isOpen(Repository&, const std::string& key)
//   odb_Odb& database(Repository&, const std::string& key)          throws when it is not open
//   int nOpen(Repository&)
//   std::vector<std::string> openKeys(Repository&)                  in the repository's order
//   odb_Odb& openReadOnly(Repository&, const std::string& path)     throws when it cannot
//   void close(Repository&, odb_Odb&)
//   guarded(function)                runs it; what the library throws leaves it as an exception
//                                    that derives from std::exception
//   ApiError                         what an error of the library is when it leaves guarded()
//   std::string annotationText(odb_Odb&, const char* key)           empty: there is none
//   std::vector<RecordedFailure> recordedFailures(const odb_Step&)  empty: none are recorded
//   NodeArrays nodeArrays(const odb_SequenceNode&)                  used by sdk_mesh_runs.h
//   ElementArrays elementArrays(const odb_SequenceElement&)
//   ValueSlice<Real>                 consecutive values of a block: first, n, labels, numbers
//   forEachValueSlice<Real>(const odb_FieldBulkData&, bool complex, use)
//                                    use(slice) for each slice of a block of Real's precision
//   bool hasCsys1(const odb_ConnectorOrientation&), hasCsys2, hasAnalyticSurface(odb_RigidBody)
namespace odbs::sdk {

// When an element failed, as the step records it.
struct RecordedFailure {
  std::string instance;
  int label = -1;
  double time = 0;  // step time
};

// The library's own arrays of a whole sequence; null where it has none.
struct NodeArrays {
  const int* labels = nullptr;
  const float* coordinates = nullptr;  // 3 per node
};
struct ElementArrays {
  const int* labels = nullptr;
  const int* blockOf = nullptr;  // ascending; a block has one type, category and number of nodes
};

}  // namespace odbs::sdk

#if defined(ODBS_SDK)
#include "server/core/sdk_vendor.h"
#else
#include "server/core/sdk_embedded.h"
#endif

namespace odbs::sdk {

// ---- Databases ----

// The key under which a database is open.
inline std::string keyOf(const odb_Odb& odb) {
  return odb.name().CStr();
}

// Closes every open database, in the parent watchdog. Contract: a failure is left uncaught there
// and ends the process abnormally.
inline void closeAllAtExit() {
  Repository& repository = openDatabases();
  for (const std::string& key : openKeys(repository)) {
    try {
      close(repository, database(repository, key));
    } catch (...) {
      throw std::runtime_error("Error openOdb");
    }
  }
}

// True for a file of an older release.
inline bool isUpgradeRequired(const std::string& path) {
  return isUpgradeRequiredForOdb(path.c_str());
}

// Writes an upgraded copy of the database at `path`.
inline void upgrade(const std::string& path, const std::string& copy) {
  upgradeOdb(path.c_str(), copy.c_str());
}

// ---- Model ----

// How many coordinates the nodes of an instance, part or assembly have: 2 in planar and
// axisymmetric ones, else 3.
template <typename Entity>
int coordinateCount(const Entity& entity) {
  const auto space = entity.embeddedSpace();
  return space == odb_Enum::TWO_D_PLANAR || space == odb_Enum::AXISYMMETRIC ? 2 : 3;
}

// ---- Results: members with two spellings, the one in use first ----

namespace detail {

template <typename T>
auto historyPoint(const T& region, int) -> decltype(region.historyPoint()) {
  return region.historyPoint();
}
template <typename T>
auto historyPoint(const T& region, long) -> decltype(region.point()) {
  return region.point();
}

template <typename T>
auto sectionPoints(const T& location, int) -> decltype(location.sectionPoint()) {
  return location.sectionPoint();
}
template <typename T>
auto sectionPoints(const T& location, long) -> decltype(location.sectionPoints()) {
  return location.sectionPoints();
}

template <typename T>
auto referenceNodes(const T& body, int) -> decltype(body.referenceNodeSet()) {
  return body.referenceNodeSet();
}
template <typename T>
auto referenceNodes(const T& body, long) -> decltype(body.referenceNode()) {
  return body.referenceNode();
}

template <typename T>
auto clearBlocks(T& blocks, int) -> decltype(blocks.clearAll()) {
  return blocks.clearAll();
}
template <typename T>
void clearBlocks(T&, long) {}

}  // namespace detail

// The point of a history region.
template <typename Region>
decltype(auto) historyPointOf(const Region& region) {
  return detail::historyPoint(region, 0);
}

// The section points of a field location, as a sequence.
template <typename Location>
decltype(auto) sectionPointsOf(const Location& location) {
  return detail::sectionPoints(location, 0);
}

// The set that holds the reference node of a rigid body.
template <typename Body>
decltype(auto) referenceNodesOf(const Body& body) {
  return detail::referenceNodes(body, 0);
}

// Drops the loaded data of a sequence of bulk blocks, where the library can.
template <typename Blocks>
void clearBulkBlocks(Blocks& blocks) {
  detail::clearBlocks(blocks, 0);
}

// True for the number of a result position that the library has.
inline bool isResultPosition(int number) {
  switch (number) {
    case odb_Enum::NODAL:
    case odb_Enum::ELEMENT_NODAL:
    case odb_Enum::INTEGRATION_POINT:
    case odb_Enum::CENTROID:
    case odb_Enum::ELEMENT_FACE:
    case odb_Enum::ELEMENT_FACE_INTEGRATION_POINT:
    case odb_Enum::SURFACE_INTEGRATION_POINT:
    case odb_Enum::WHOLE_ELEMENT:
    case odb_Enum::WHOLE_REGION:
    case odb_Enum::WHOLE_PART_INSTANCE:
    case odb_Enum::WHOLE_MODEL:
      return true;
    default:
      return false;
  }
}

// The numbers that go to the parent are those of these enumerators.
static_assert(odb_Enum::NODAL == 1 && odb_Enum::ELEMENT_NODAL == 2 &&
                  odb_Enum::INTEGRATION_POINT == 3 && odb_Enum::CENTROID == 4,
              "result positions differ: map them here before they are sent");
static_assert(odb_Enum::FACE1 == 11 && odb_Enum::EDGE1 == 101 && odb_Enum::SPOS == 1001 &&
                  odb_Enum::SNEG == 1002,
              "element faces differ: map them here before they are sent");
static_assert(odb_Enum::SCALAR == 2 && odb_Enum::VECTOR == 3 && odb_Enum::TENSOR_3D_FULL == 5 &&
                  odb_Enum::TENSOR_2D_SURFACE == 9,
              "data types differ: map them here before they are sent");

}  // namespace odbs::sdk
