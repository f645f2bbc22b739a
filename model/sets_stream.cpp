// SPDX-License-Identifier: BSD-3-Clause
// The order of the sets stream of model/sets_stream.h, and its records.
#include "model/sets_stream.h"

#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lookup/instance_names.h"
#include "model/put.h"
#include "server/core/entity_records.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"
#include "server/core/set_records.h"

namespace odbs {

namespace {

constexpr unsigned char kErrorTag = '|';

constexpr std::string_view kBrokenSets = "Error in Sets definition";
constexpr std::string_view kCouplingMark = "COUPLING_";

std::optional<SetKind> kindOf(const odb_Set& set) {
  switch (set.type()) {
    case odb_Enum::NODE_SET:
      return SetKind::kNodes;
    case odb_Enum::ELEMENT_SET:
      return SetKind::kElements;
    case odb_Enum::SURFACE_SET:
      return SetKind::kSurface;
    default:
      return std::nullopt;
  }
}

class SetsWriter {
 public:
  SetsWriter(int outputFd, bool grouped, bool withCouplings)
      : outputFd_(outputFd), grouped_(grouped), withCouplings_(withCouplings) {}

  // One group of one instance: the assembly's sets, restricted to it, then its own. A database that
  // fails in the assembly's part ends the group with the error record.
  void sendGroup(const odb_Instance& instance, const odb_Assembly& assembly,
                 const SetLookUp& setsOf) {
    const odb_String name = instance.name();
    try {
      sdk::guarded([&] { sendAssemblySets(setsOf(assembly), name); });
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      if (grouped_) sendMarker(outputFd_);
      sendTextRecord(outputFd_, kErrorTag, kBrokenSets);
      return;
    }
    if (grouped_) sendNameRecord(outputFd_, viewOf(name));
    odb_SetRepositoryIT it(setsOf(instance));
    for (it.first(); !it.isDone(); it.next()) {
      const odb_Set set = it.currentValue();
      if (isSent(set)) sendSet(set, name, false);
    }
    if (grouped_) sendMarker(outputFd_);
  }

 private:
  void sendAssemblySets(const odb_SetRepository& sets, const odb_String& instance) {
    odb_SetRepositoryIT it(sets);
    for (it.first(); !it.isDone(); it.next()) {
      const odb_Set set = it.currentValue();
      if (!isSent(set)) continue;
      sendSet(set, instance, grouped_);
      if (grouped_) sendMarker(outputFd_);
    }
  }

  bool isSent(const odb_Set& set) const {
    const odb_String owned = set.name();
    const std::string_view name = viewOf(owned);
    // Contract: exactly these names, with their leading blank, never go out.
    if (name == " ALL NODES" || name == " ALL ELEMENTS") return false;
    return withCouplings_ || set.type() != odb_Enum::NODE_SET ||
           name.find(kCouplingMark) == std::string_view::npos;
  }

  // The set's header, the members that belong to the instance, and the end. Contract: a set of
  // another type is the end-of-set record alone.
  void sendSet(const odb_Set& set, const odb_String& instance, bool named) {
    if (const std::optional<SetKind> kind = kindOf(set)) {
      const odb_String name = set.name();
      sendSetHeader(outputFd_, *kind, viewOf(name));
      if (named) sendNameRecord(outputFd_, viewOf(instance));
      try {
        sdk::guarded([&] { sendMembers(set, *kind, instance); });
      } catch (const std::bad_alloc&) {
        throw;
      } catch (const std::exception&) {
        // Contract: members that cannot be read end the list, and the set is closed all the same.
      }
    }
    sendEndOfSet(outputFd_);
  }

  void sendMembers(const odb_Set& set, SetKind kind, const odb_String& instance) {
    if (kind == SetKind::kNodes) {
      sendNodeLabels(outputFd_, set.nodes(instance));
    } else if (kind == SetKind::kElements) {
      sendElementLabels(outputFd_, set.elements(instance));
    } else {
      sendElementLabelPairs(outputFd_, set.elements(instance), set.faces(instance));
    }
  }

  int outputFd_;
  bool grouped_;
  bool withCouplings_;
};

}  // namespace

SetLookUps librarySets() {
  return {[](const auto& owner) -> const auto& {return owner.nodeSets();
}
, [](const auto& owner) -> const auto& {
  return owner.elementSets();
}
, [](const auto& owner) -> const auto& {
  return owner.surfaces();
}
};  // namespace odbs
}

void sendSetsStream(odb_Odb& odb, int outputFd, bool withSurfaces, bool withCouplings,
                    const SetLookUps& lookUps) {
  sendTitleAndKind(outputFd, odb);
  outputBuffer.fill = 0;
  odb_Assembly& assembly = odb.rootAssembly();
  const std::vector<std::string> names = sortedInstanceNames(assembly);
  SetsWriter writer(outputFd, names.size() > 1, withCouplings);
  for (const std::string& name : names) {
    const odb_Instance& instance = assembly.instances()[name.c_str()];
    writer.sendGroup(instance, assembly, lookUps.nodeSets);
    writer.sendGroup(instance, assembly, lookUps.elementSets);
    if (withSurfaces) writer.sendGroup(instance, assembly, lookUps.surfaces);
  }
  flushOutput(outputFd);
}

}  // namespace odbs
