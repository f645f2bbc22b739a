// SPDX-License-Identifier: BSD-3-Clause
// The order of the model stream of model/model_stream.h.
#include "model/model_stream.h"

#include <new>
#include <string>
#include <vector>

#include "lookup/instance_names.h"
#include "model/materials.h"
#include "model/mesh.h"
#include "model/put.h"
#include "model/rigid_bodies.h"
#include "model/sections.h"
#include "server/core/entity_records.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

constexpr unsigned char kAnnotationLineTag = 0x15;
constexpr const char* kAnnotationKey = "xml";

// Annotation line record, direct.
//   offset  size  content
//   0       1     kAnnotationLineTag
//   1       4+n   the line with its newline
void sendAnnotation(odb_Odb& odb, int outputFd) {
  const std::string text = sdk::annotationText(odb, kAnnotationKey);
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t newline = text.find('\n', begin);
    const std::size_t end = newline == std::string::npos ? text.size() : newline + 1;
    beginRecord(kAnnotationLineTag);
    putText(std::string_view(text).substr(begin, end - begin));
    sendDirect(outputFd);
    begin = end;
  }
}

// The section numbers of an instance's elements. Contract: with a single instance that claims no
// section the unclaimed assignments count as its own, with several they do not.
const ElementSections& sectionsOf(const std::string& instanceName, bool isSingle,
                                  const SectionTables& tables) {
  static const ElementSections kNone;
  const auto own = tables.byInstance.find(instanceName);
  if (own != tables.byInstance.end()) return own->second;
  return isSingle ? tables.unclaimed : kNone;
}

void sendInstance(const odb_Instance& instance, const ElementSections& sections,
                  const SectionNumbers& numbers, bool nodesOnly, int outputFd) {
  sendNodes(instance.nodes(), sdk::coordinateCount(instance), outputFd);
  if (nodesOnly) return;
  sendElements(instance.elements(), sections, numbers, outputFd);
  if (instance.hasAnalyticSurface()) sendAnalyticSurface(instance.analyticSurface(), outputFd);
  sendRigidBodies(instance.rigidBodies(), outputFd);
}

}  // namespace

void sendModelStream(odb_Odb& odb, int outputFd, bool nodesOnly) {
  sendTitleAndKind(outputFd, odb);
  odb_Assembly& assembly = odb.rootAssembly();
  const std::vector<std::string> names = sortedInstanceNames(assembly);
  const bool isSingle = names.size() == 1;
  const bool grouped = names.size() > 1;

  SectionTables tables;
  if (!nodesOnly) {
    try {
      sdk::guarded([&] { sendAnnotation(odb, outputFd); });
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      // Contract: a model whose annotations cannot be read is sent without them.
    }
    outputBuffer.fill = 0;
    tables = sendSections(odb, names, outputFd);
    sendMaterials(odb, outputFd);
    flushOutput(outputFd);
  }
  for (const std::string& name : names) {
    odb_Instance& instance = assembly.instances()[name.c_str()];
    outputBuffer.fill = 0;
    if (grouped) sendEntityName(outputFd, instance);
    sendInstance(instance, sectionsOf(name, isSingle, tables), tables.numbers, nodesOnly, outputFd);
    flushOutput(outputFd);
  }
  sendRigidBodies(assembly.rigidBodies(), outputFd);
  flushOutput(outputFd);
  if (!grouped) return;
  sendEntityName(outputFd, assembly);
  sendNodes(assembly.nodes(), sdk::coordinateCount(assembly), outputFd);
  if (!nodesOnly) sendElements(assembly.elements(), tables.unclaimed, tables.numbers, outputFd);
  flushOutput(outputFd);
}

}  // namespace odbs
