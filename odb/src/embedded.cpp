// SPDX-License-Identifier: BSD-3-Clause
// Engine-private writing.
#include "odb/src/model/database.h"
#include "odb/src/model/entity_write.h"
#include "odb/src/storage/errors.h"

#include <odb_embedded.h>

namespace odb_embedded {

using namespace odbs::engine;

namespace {

Database& writable(odb_Odb& odb) {
  Database& database = odb.engineDatabase();
  database.needWritable();
  database.touch();
  return database;
}

EntityData& entityOf(const odb_DiscreteEntity& owner) {
  if (!owner.engineData()) failUsage("a part, an instance or the assembly is wanted");
  return *owner.engineData();
}

void copyNumbers(const std::vector<double>& from, std::size_t n, odb_SequenceDouble& to) {
  if (!from.empty() && from.size() != n) {
    failUsage("mass data want " + std::to_string(n) + " numbers");
  }
  to = odb_SequenceDouble();
  for (const double number : from) to.append(number);
}

// Sets of one name for all nodes or elements of all instances.
void addAllSet(EntityData& root, odb_Enum::odb_SetTypeEnum type, const char* name) {
  const bool ofElements = type == odb_Enum::ELEMENT_SET;
  SetData& set = addSet(root, type, name);
  Model& model = *root.model;
  const auto addAll = [&](EntityData& entity) {
    EntityData& arrays = arraysOf(entity);
    const Buffer<int>& labels =
        (ofElements ? arrays.elementLabels : arrays.nodeLabels).get(entity.database->storage);
    if (labels.empty()) return;
    addSegment(set, entity, ofElements, std::vector<int>(labels.begin(), labels.end()), {});
  };
  addAll(root);
  for (int i = 0; i < model.instances.size(); ++i) addAll(*model.instances[i].engineData());
}

}  // namespace

void setJobData(odb_Odb& odb, const JobData& job) {
  odb_JobData& data = writable(odb).job;
  data.analysisCode_ = job.analysisCode;
  data.precision_ = job.precision;
  data.name_ = job.name;
  data.version_ = job.version;
  data.creationTime_ = job.creationTime;
  data.modificationTime_ = job.modificationTime;
  data.machineName_ = job.machineName;
  data.productAddOns_ = odb_SequenceProductAddOn();
  for (const auto addOn : job.productAddOns) data.productAddOns_.append(addOn);
}

void setAssemblyName(odb_Odb& odb, const odb_String& name) {
  Database& database = writable(odb);
  database.assemblyName = name;
  database.model().root().name = name;
}

void setTitle(odb_Odb& odb, const odb_String& analysisTitle, const odb_String& description) {
  Database& database = writable(odb);
  database.title = analysisTitle;
  database.description = description;
}

void setAnnotation(odb_Odb& odb, const odb_String& key, const odb_String& text) {
  Model& model = writable(odb).model();
  AnnotationData& annotation = model.annotations.emplace_back();
  annotation.text = text;
  model.annotationHandles.engineItems().add(key, odb_Text(&annotation));
}

void addCurve(odb_Odb& odb, const Curve& curve) {
  Model& model = writable(odb).model();
  if (model.curveHandles.isMember(curve.name)) {
    failUsage(std::string("curve ") + curve.name.CStr() + " exists already");
  }
  CurveData& data = model.curves.emplace_back();
  data.name = curve.name;
  const odb_String* texts[7] = {&curve.sourceDescription,   &curve.contentDescription,
                                &curve.positionDescription, &curve.xAxisLabel,
                                &curve.yAxisLabel,          &curve.legendLabel,
                                &curve.description};
  for (int i = 0; i < 7; ++i) data.texts[i] = *texts[i];
  data.points = curve.points;
  model.curveHandles.engineItems().add(curve.name, odb_UserXYData(&data));
}

void setSectorDefinition(odb_Odb& odb, int numSectors, const odb_SequenceSequenceFloat& axis) {
  if (axis.size() != 2) failUsage("the axis of a cyclic model is given by two points");
  odb_SectorDefinition& sector = writable(odb).sector;
  sector.numSectors_ = numSectors;
  sector.symmetryAxis_ = axis;
}

void addRigidBody(odb_DiscreteEntity& owner, const odb_Set& reference,
                  const odb_PartEntity& surfaceOwner, odb_Enum::odb_PositionEnum position,
                  bool isothermal) {
  const EntityData& holder = entityOf(surfaceOwner);
  RigidBodyData body;
  body.reference = reference;
  body.position = position;
  body.isothermal = isothermal;
  body.surface = holder.surface ? holder.surface.get()
                 : holder.part  ? holder.part->surface.get()
                                : nullptr;
  if (!body.surface || holder.model != entityOf(owner).model) {
    failUsage(std::string(holder.name.CStr()) + " has no analytic surface");
  }
  odbs::engine::addRigidBody(entityOf(owner), body);
}

odb_Set& addNodeSurface(odb_DiscreteEntity& owner, const odb_String& name,
                        const odb_SequenceInt& labels) {
  return odbs::engine::addNodeSurface(entityOf(owner), name, labels);
}

odb_Set& addNodeSurface(odb_Assembly& owner, const odb_String& name,
                        const odb_SequenceString& instanceNames,
                        const odb_SequenceSequenceInt& labels) {
  return odbs::engine::addNodeSurface(entityOf(owner), name, instanceNames, labels);
}

void addInternalSets(odb_Odb& odb) {
  EntityData& root = writable(odb).model().root();
  addAllSet(root, odb_Enum::NODE_SET, " ALL NODES");
  addAllSet(root, odb_Enum::ELEMENT_SET, " ALL ELEMENTS");
}

void addNodes(odb_DiscreteEntity& owner, int n, const int* labels, const float* coordinates) {
  appendNodes(entityOf(owner), n, labels, coordinates);
}

void addElements(odb_DiscreteEntity& owner, int n, const int* labels, int nNodes,
                 const int* connectivity, const odb_String& type,
                 const odb_SectionCategory& category) {
  appendElements(entityOf(owner), n, labels, nNodes, connectivity, type, category, nullptr);
}

void setMassData(odb_Step& step, const MassData& data) {
  StepData* to = step.engineData();
  if (!to) failUsage("a step is wanted");
  to->database->needWritable();
  copyNumbers(data.massCenter, 3, to->massCenter);
  copyNumbers(data.inertiaAboutCenter, 6, to->inertiaAboutCenter);
  copyNumbers(data.inertiaAboutOrigin, 6, to->inertiaAboutOrigin);
  copyNumbers(data.acousticMassCenter, 3, to->acousticMassCenter);
  to->mass = data.mass;
  to->acousticMass = data.acousticMass;
  to->database->touch();
}

void setFrameNumbers(odb_Frame& frame, const FrameNumbers& numbers) {
  FrameData* to = frame.engineData();
  if (!to) failUsage("a frame is wanted");
  to->step->database->needWritable();
  to->mode = numbers.mode;
  to->cyclicMode = numbers.cyclicModeNumber;
  to->frequency = numbers.frequency;
  to->step->database->touch();
}

void setAssociatedFrame(odb_Frame& frame, const odb_Frame& other) {
  FrameData* to = frame.engineData();
  if (!to || !other.engineData() || other.engineData()->step != to->step) {
    failUsage("associated frames belong to one step");
  }
  to->step->database->needWritable();
  to->associated = other.engineData()->index;
  to->step->database->touch();
}

void setCompression(odb_Odb& odb, bool on) {
  writable(odb).storage.compressed = on;
}

void saveInOldLayout(odb_Odb& odb, const odb_String& path) {
  odb.engineDatabase().saveOld(path.CStr());
}

void stampRelease(const odb_String& path, int release) {
  Hdf5File file = Hdf5File::openForWriting(path.CStr(), path.CStr());
  const std::int64_t value = release;
  file.write(file.open(layout::kFormat, Number::kInt64, 1), 1, 1, &value);
  file.finish();
}

int releaseOf(const odb_String& path) {
  return static_cast<int>(readFormat(std::string(path.CStr())).release);
}

}  // namespace odb_embedded
