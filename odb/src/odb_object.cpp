// SPDX-License-Identifier: BSD-3-Clause
// odb_Odb: getters and adding.
#include "odb/src/model/database.h"
#include "odb/src/model/frame_match.h"
#include "odb/src/storage/errors.h"

using namespace odbs::engine;

odb_Odb::odb_Odb(std::unique_ptr<Database> database) : database_(std::move(database)) {}
odb_Odb::~odb_Odb() = default;

Database& odb_Odb::engineDatabase() const {
  if (!database_) failUsage(std::string("the database ") + name_.CStr() + " is closed");
  return *database_;
}

const odb_String& odb_Odb::name() const {
  return name_;
}
const odb_String& odb_Odb::path() const {
  return path_;
}
const odb_String& odb_Odb::analysisTitle() const {
  return engineDatabase().title;
}
const odb_String& odb_Odb::description() const {
  return engineDatabase().description;
}
bool odb_Odb::isReadOnly() const {
  return engineDatabase().readOnly;
}
bool odb_Odb::isClosed() const {
  return database_ == nullptr;
}
odb_Assembly& odb_Odb::rootAssembly() const {
  return engineDatabase().model().assembly;
}
odb_JobData odb_Odb::jobData() const {
  return engineDatabase().job;
}
odb_PartRepository& odb_Odb::parts() const {
  return engineDatabase().model().parts;
}
odb_StepRepository& odb_Odb::steps() const {
  return engineDatabase().steps.handles;
}
odb_SectionCategoryRepository& odb_Odb::sectionCategories() const {
  return engineDatabase().model().categoryHandles;
}
odb_UserData& odb_Odb::userData() const {
  return engineDatabase().userData;
}
odb_InteractionRepository& odb_Odb::interactions() const {
  return engineDatabase().model().interactions;
}
odb_InteractionPropertyRepository& odb_Odb::interactionProperties() const {
  return engineDatabase().model().interactionProperties;
}
odb_ConstraintRepository& odb_Odb::constraints() const {
  return engineDatabase().model().constraints;
}
odb_AmplitudeRepository& odb_Odb::amplitudes() const {
  return engineDatabase().model().amplitudes;
}
bool odb_Odb::hasSectorDefinition() const {
  return engineDatabase().sector.numSectors() != 0;
}
const odb_SectorDefinition& odb_Odb::sectorDefinition() const {
  if (!hasSectorDefinition()) failAbsent("the database has no sector definition");
  return engineDatabase().sector;
}

void odb_Odb::extendApi(odb_Enum::odb_ApiExtensionEnum which, odb_ApiExtension& extension) {
  if (extension.engineKind() != which) failUsage("the extension object does not fit the selector");
  extension.engineAttach(&engineDatabase());
}

odb_Frame odb_Odb::getFrame(double value, odb_Enum::odb_MatchEnum match) const {
  std::vector<double> values;
  std::vector<odb_Frame> frames;
  const odb_StepRepository& all = steps();
  for (int i = 0; i < all.size(); ++i) {
    const StepData& step = *all[i].engineData();
    const odb_SequenceFrame& list = all[i].frames();
    for (int k = 0; k < list.size(); ++k) {
      const double start = step.domain == odb_Enum::TIME ? step.totalTime : 0;
      values.push_back(start + static_cast<double>(list[k].frameValue()));
      frames.push_back(list[k]);
    }
  }
  const int at = matchFrame(values, value, match);
  if (at < 0) failAbsent("the database has no such frame");
  return frames[static_cast<std::size_t>(at)];
}

void odb_Odb::save() {
  engineDatabase().save();
}
bool odb_Odb::update() {
  return engineDatabase().update();
}
void odb_Odb::close() {
  if (database_) odb_openDatabases().engineLeave(*this);
}

odb_SectionCategory& odb_Odb::SectionCategory(const odb_String& name,
                                              const odb_String& description) {
  Database& database = engineDatabase();
  database.needWritable();
  Model& model = database.model();
  if (model.categoryHandles.isMember(name)) {
    failUsage(std::string("section category ") + name.CStr() + " exists already");
  }
  CategoryData& category = model.categories.emplace_back();
  category.database = &database;
  category.name = name;
  category.description = description;
  odb_SectionCategory& handle =
      model.categoryHandles.engineItems().add(name, odb_SectionCategory(&category));
  category.self = &handle;
  database.touch();
  return handle;
}

odb_Part& odb_Odb::Part(const odb_String& name, odb_Enum::odb_DimensionEnum embeddedSpace,
                        odb_Enum::odb_PartTypeEnum type) {
  Database& database = engineDatabase();
  database.needWritable();
  Model& model = database.model();
  if (name.empty() || model.parts.isMember(name)) {
    failUsage(std::string("part \"") + name.CStr() + "\" has no name or exists already");
  }
  EntityData& part = addEntity(model, database, EntityKind::kPart, name);
  part.space = embeddedSpace;
  part.type = type;
  database.touch();
  return model.parts.engineItems().add(name, odb_Part(&part));
}

odb_Step& odb_Odb::Step(const odb_String& name, const odb_String& description,
                        odb_Enum::odb_DomainEnum domain, double timePeriod,
                        const odb_String& previousStepName, const odb_String& procedure,
                        double totalTime, bool nlgeom) {
  Database& database = engineDatabase();
  database.needWritable();
  odbs::RepositoryItems<odb_Step>& items = database.steps.handles.engineItems();
  if (name.empty() || items.find(name)) {
    failUsage(std::string("step \"") + name.CStr() + "\" has no name or exists already");
  }
  int place = items.size();
  if (previousStepName == "Initial") {
    place = 0;
  } else if (!previousStepName.empty()) {
    place = 0;
    while (place < items.size() && items.at(place).key != previousStepName) ++place;
    if (place == items.size()) {
      failUsage(std::string("no step ") + previousStepName.CStr() + " to come after");
    }
    ++place;
  }
  StepData& step = database.steps.items.emplace_back();
  step.database = &database;
  step.name = name;
  step.description = description;
  step.domain = domain;
  step.timePeriod = timePeriod;
  step.procedure = procedure;
  step.nlgeom = nlgeom;
  step.totalTime = totalTime;
  if (totalTime < 0) {
    step.totalTime = 0;
    if (place > 0) {
      const StepData& before = *items.at(place - 1).value.engineData();
      step.totalTime = before.totalTime + before.timePeriod;
    }
  }
  odb_Step& handle = items.add(name, odb_Step(&step), place);
  renumberSteps(database.steps);
  database.touch();
  return handle;
}
