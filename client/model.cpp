// SPDX-License-Identifier: BSD-3-Clause
// The builder that sorts the records of a model stream into instances.
#include "client/model.h"

#include "client/records/small_records.h"

namespace odbs::client {

void ModelBuilder::add(const Record& record) {
  switch (record.tag) {
    case kNodeTag:
      return addNode(record);
    case kElementTag:
      return addElement(record);
    case kNameTag:
      return addName(record);
    case kAnnotationTag:
      model_.annotation += decodeAnnotation(record);
      return;
    case kSectionTag:
      model_.sections.push_back(decodeSection(record));
      if (namePending_) model_.sections.back().instance = pendingName_;
      inSectionGroup_ = namePending_;
      namePending_ = false;
      return;
    case kMarkerTag:
      decodeMarker(record);
      if (!inSectionGroup_) throw MalformedRecord(record.offset, "a marker outside a group");
      inSectionGroup_ = false;
      return;
    case kMaterialTag:
      model_.materials.push_back(decodeMaterial(record));
      return;
    case kAnalyticSurfaceTag:
      openInstance().analyticSurfaces.push_back(decodeAnalyticSurface(record));
      return;
    case kRigidBodyTag:
      openInstance().rigidBodies.push_back(decodeRigidBody(record));
      return;
    default:
      if (!takeHead(record, model_)) failUnexpected(record, "in a model stream");
  }
}

// A name opens either a section's group or an instance; the record after it decides. Two names
// in a row: the first is an instance without nodes.
void ModelBuilder::addName(const Record& record) {
  const std::string_view name = decodeName(record);
  if (namePending_) openInstance();
  pendingName_ = name;
  namePending_ = true;
  hasNames_ = true;
}

// The instance that mesh records belong to now.
Instance& ModelBuilder::openInstance() {
  if (namePending_ || model_.instances.empty()) {
    model_.instances.emplace_back();
    model_.instances.back().name = pendingName_;
    namePending_ = false;
    pendingName_.clear();
  }
  return model_.instances.back();
}

void ModelBuilder::addNode(const Record& record) {
  const NodeView node = decodeNode(record);
  Instance& instance = openInstance();
  if (instance.nodeLabels.empty()) instance.nCoordinates = node.nCoordinates;
  if (instance.nCoordinates != node.nCoordinates) {
    throw MalformedRecord(record.offset, "node record: " + std::to_string(node.nCoordinates) +
                                             " coordinates after nodes of " +
                                             std::to_string(instance.nCoordinates));
  }
  instance.nodeLabels.push_back(node.label);
  for (std::uint32_t i = 0; i < node.nCoordinates; ++i) {
    instance.coordinates.push_back(node.coordinate(i));
  }
}

void ModelBuilder::addElement(const Record& record) {
  const ElementView element = decodeElement(record);
  Instance& instance = openInstance();
  if (instance.connectivityOffsets.empty()) instance.connectivityOffsets.push_back(0);
  instance.elementLabels.push_back(element.label);
  instance.elementTypes.push_back(typeCode(element.type));
  instance.sectionNumbers.push_back(element.sectionNumber);
  for (std::uint32_t i = 0; i < element.nNodes; ++i) {
    instance.connectivity.push_back(element.node(i));
  }
  instance.connectivityOffsets.push_back(instance.connectivity.size());
}

std::uint32_t ModelBuilder::typeCode(std::string_view type) {
  if (!codes_.empty() && type == lastType_) return lastCode_;
  lastType_ = type;
  const auto [place, isNew] =
      codes_.emplace(lastType_, static_cast<std::uint32_t>(model_.elementTypes.size()));
  if (isNew) model_.elementTypes.push_back(lastType_);
  lastCode_ = place->second;
  return lastCode_;
}

Model ModelBuilder::finish() {
  if (namePending_) openInstance();
  // With names, the last one is the root assembly's.
  if (hasNames_ && !model_.instances.empty()) model_.instances.back().isRootAssembly = true;
  Model model = std::move(model_);
  *this = ModelBuilder();
  return model;
}

Model readModel(Connection& server, const std::string& path, ModelScope scope) {
  server.send((scope == ModelScope::kWhole ? "g " : "G ") + path);
  return requireOpened(path, readReply(server, ModelBuilder()));
}

}  // namespace odbs::client
