// SPDX-License-Identifier: BSD-3-Clause
// The vendor SDK's variant of the adapter; see server/core/sdk_adapter.h, which includes this. Each
// function says what is undocumented about it and what was chosen. Not linked with the SDK yet.
#pragma once

#include <odb_API.h>
#if __has_include(<odb_OdbRepository.h>)
#include <odb_OdbRepository.h>
#endif
#if __has_include(<odb_DiscreteEntity.h>)
#include <odb_DiscreteEntity.h>
#endif

#include <map>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace odbs::sdk {

// How to get at the SDK's own repository of open databases is not published, so the adapter keeps
// one: every database of the server is opened and closed here. Walked in the order of the keys.
class Repository {
 public:
  std::map<std::string, odb_Odb*> databases;
};

inline Repository& openDatabases() {
  static Repository& repository = *new Repository;  // the watchdog uses it to the end
  return repository;
}

// What the SDK's own exceptions become.
class SdkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
using ApiError = SdkError;

// Whether the SDK's exceptions derive from std::exception, or one of these from another, is not
// published. What is neither passes: contract.
template <typename Function>
decltype(auto) guarded(Function&& function) {
  try {
    return std::forward<Function>(function)();
  } catch (const odb_Exception& error) {
    throw SdkError(error.ErrMsg().text());
  } catch (const nex_Exception& error) {
    throw SdkError(error.UserReport().CStr());
  } catch (const odb_BaseException& error) {
    throw SdkError(error.UserReport().CStr());
  }
}

inline bool isOpen(Repository& repository, const std::string& key) {
  return repository.databases.count(key) != 0;
}

inline odb_Odb& database(Repository& repository, const std::string& key) {
  return *repository.databases.at(key);
}

inline int nOpen(Repository& repository) {
  return static_cast<int>(repository.databases.size());
}

inline std::vector<std::string> openKeys(Repository& repository) {
  std::vector<std::string> keys;
  for (const auto& entry : repository.databases) keys.push_back(entry.first);
  return keys;
}

inline odb_Odb& openReadOnly(Repository& repository, const std::string& path) {
  odb_Odb& odb = guarded([&]() -> odb_Odb& { return openOdb(path.c_str(), true); });
  repository.databases[path] = &odb;
  return odb;
}

// The free function closeOdb is not documented; the method is. The entry goes first, so that a
// close that fails is not tried again.
inline void close(Repository& repository, odb_Odb& odb) {
  for (auto at = repository.databases.begin(); at != repository.databases.end(); ++at) {
    if (at->second != &odb) continue;
    repository.databases.erase(at);
    break;
  }
  guarded([&] { odb.close(); });
}

// Neither the annotations nor their text is documented: found by name where the SDK has them.
namespace detail {

template <typename Data>
auto annotationText(Data& data, const char* key, int)
    -> decltype(std::string(data.annotationObjects()[key].text().CStr())) {
  auto& annotations = data.annotationObjects();
  return annotations.isMember(key) ? annotations[key].text().CStr() : "";
}
template <typename Data>
std::string annotationText(Data&, const char*, long) {
  return {};
}

}  // namespace detail

inline std::string annotationText(odb_Odb& odb, const char* key) {
  return detail::annotationText(odb.userData(), key, 0);
}

// How to read them is not documented.
inline std::vector<RecordedFailure> recordedFailures(const odb_Step&) {
  return {};
}

// The has... members are not documented: an object is absent when its getter throws or its name is
// empty.
template <typename Getter>
bool isNamed(Getter getter) {
  try {
    return getter().name().Length() > 0;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return false;
  }
}

inline bool hasCsys1(const odb_ConnectorOrientation& orientation) {
  return isNamed([&]() -> decltype(auto) { return orientation.csys1(); });
}

inline bool hasCsys2(const odb_ConnectorOrientation& orientation) {
  return isNamed([&]() -> decltype(auto) { return orientation.csys2(); });
}

inline bool hasAnalyticSurface(const odb_RigidBody& body) {
  return isNamed([&]() -> decltype(auto) { return body.analyticSurface(); });
}

// The SDK does not document its arrays.
inline NodeArrays nodeArrays(const odb_SequenceNode&) {
  return {};
}

inline ElementArrays elementArrays(const odb_SequenceElement&) {
  return {};
}

// A whole block is one slice.
template <typename Real>
struct ValueSlice {
  int first = 0;
  int n = 0;
  const int* elementLabels = nullptr;
  const int* nodeLabels = nullptr;
  const int* integrationPoints = nullptr;
  const odb_Enum::odb_ElementFaceEnum* faces = nullptr;
  const Real* data = nullptr;
  const Real* conjugateData = nullptr;
  const Real* localCoordSystem = nullptr;
};

namespace detail {

inline void takeNumbers(const odb_FieldBulkData& block, bool complex, ValueSlice<float>& slice) {
  slice.data = block.data();
  if (complex) slice.conjugateData = block.conjugateData();
  if (block.orientationWidth() > 0) slice.localCoordSystem = block.localCoordSystem();
}

inline void takeNumbers(const odb_FieldBulkData& block, bool complex, ValueSlice<double>& slice) {
  slice.data = block.dataDouble();
  if (complex) slice.conjugateData = block.conjugateDataDouble();
  if (block.orientationWidth() > 0) slice.localCoordSystem = block.localCoordSystemDouble();
}

}  // namespace detail

template <typename Real, typename Use>
void forEachValueSlice(const odb_FieldBulkData& block, bool complex, Use use) {
  ValueSlice<Real> slice;
  slice.n = block.length();
  slice.elementLabels = block.elementLabels();
  slice.nodeLabels = block.nodeLabels();
  slice.integrationPoints = block.integrationPoints();
  slice.faces = block.faces();
  detail::takeNumbers(block, complex, slice);
  use(slice);
}

}  // namespace odbs::sdk
