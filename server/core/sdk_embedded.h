// SPDX-License-Identifier: BSD-3-Clause
// The embedded library's variant of the adapter; see server/core/sdk_adapter.h, which includes
// this.
#pragma once

#include <odb_API.h>
#include <odb_BlockSlices.h>
#include <odb_FailureTimes.h>

#include <string>
#include <utility>
#include <vector>

namespace odbs::sdk {

using Repository = odb_OdbRepository;

inline Repository& openDatabases() {
  return odb_openDatabases();
}

inline bool isOpen(Repository& repository, const std::string& key) {
  return repository.isMember(key.c_str());
}

inline odb_Odb& database(Repository& repository, const std::string& key) {
  return repository.get(key.c_str());
}

inline int nOpen(Repository& repository) {
  return repository.size();
}

inline std::vector<std::string> openKeys(Repository& repository) {
  std::vector<std::string> keys;
  odb_OdbRepositoryIT it(repository);
  for (it.first(); !it.isDone(); it.next()) keys.emplace_back(it.currentKey().CStr());
  return keys;
}

inline odb_Odb& openReadOnly(Repository&, const std::string& path) {
  return openOdb(path.c_str(), true);
}

inline void close(Repository&, odb_Odb& odb) {
  closeOdb(odb);
}

// What the library throws itself, memory failures left out.
using ApiError = nex_Exception;

// Everything that the embedded library throws derives from std::exception.
template <typename Function>
decltype(auto) guarded(Function&& function) {
  return std::forward<Function>(function)();
}

inline std::string annotationText(odb_Odb& odb, const char* key) {
  const auto& annotations = odb.userData().annotationObjects();
  return annotations.isMember(key) ? annotations[key].text().CStr() : "";
}

inline std::vector<RecordedFailure> recordedFailures(const odb_Step& step) {
  std::vector<RecordedFailure> failures;
  for (const engine::FailureTime& failure : engine::failureTimes(step)) {
    failures.push_back({failure.instance.name().CStr(), failure.elementLabel, failure.time});
  }
  return failures;
}

inline bool hasCsys1(const odb_ConnectorOrientation& orientation) {
  return orientation.hasCsys1();
}

inline bool hasCsys2(const odb_ConnectorOrientation& orientation) {
  return orientation.hasCsys2();
}

inline bool hasAnalyticSurface(const odb_RigidBody& body) {
  return body.hasAnalyticSurface();
}

// Nothing for a sequence that is a selection from the library's arrays.
inline NodeArrays nodeArrays(const odb_SequenceNode& nodes) {
  const auto* table = nodes.engineTable();
  if (table == nullptr || nodes.engineIndices() != nullptr) return {};
  return {table->labels, table->coordinates};
}

inline ElementArrays elementArrays(const odb_SequenceElement& elements) {
  const auto* table = elements.engineTable();
  if (table == nullptr || elements.engineIndices() != nullptr) return {};
  return {table->labels, table->blockOf};
}

template <typename Real>
using ValueSlice = engine::BlockSlice<Real>;

// Calls use(slice) for consecutive pieces of the block, which is in the precision of Real, until
// all its values were in one.
template <typename Real, typename Use>
void forEachValueSlice(const odb_FieldBulkData& block, bool, Use use) {
  engine::BlockSlices<Real> slices(block);
  while (const ValueSlice<Real>* slice = slices.next()) use(*slice);
}

}  // namespace odbs::sdk
