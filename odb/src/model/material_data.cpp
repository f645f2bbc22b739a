// SPDX-License-Identifier: BSD-3-Clause
// Materials and their extension.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

namespace {

const BehaviourData& noBehaviour() {
  static const BehaviourData none;
  return none;
}

const odb_String& textOf(const BehaviourData& behaviour, const char* key) {
  static const odb_String none;
  const auto at = behaviour.properties.find(key);
  return at == behaviour.properties.end() ? none : at->second.value.engineText();
}

double numberOf(const BehaviourData& behaviour, const char* key) {
  const auto at = behaviour.properties.find(key);
  if (at == behaviour.properties.end() || at->second.value.type() == odb_UNION_STRING) return 0;
  return at->second.value.getDouble();
}

BehaviourData& setBehaviour(MaterialData& material, BehaviourKind kind,
                            const odb_SequenceSequenceDouble& table, bool temperatureDependency,
                            int dependencies) {
  material.database->needWritable();
  BehaviourData& behaviour = material.behaviours[kind];
  behaviour.hasValue = true;
  behaviour.table = table;
  behaviour.properties.clear();
  behaviour.properties["temperatureDependency"].value = temperatureDependency;
  behaviour.properties["dependencies"].value = dependencies;
  material.database->touch();
  return behaviour;
}

}  // namespace

void setUpMaterial(MaterialData& material) {
  for (BehaviourData& behaviour : material.behaviours) {
    behaviour.database = material.database;
    behaviour.material = &material;
  }
  material.density = odb_Density(&material.behaviours[kDensity]);
  material.elastic = odb_Elastic(&material.behaviours[kElastic]);
  material.failStress = odb_FailStress(&material.behaviours[kFailStress]);
  material.failStrain = odb_FailStrain(&material.behaviours[kFailStrain]);
  material.acousticMedium = odb_AcousticMedium(&material.behaviours[kAcousticMedium]);
}

}  // namespace odbs::engine

using namespace odbs::engine;

bool odb_MaterialBehaviour::hasValue() const {
  return data_ && data_->hasValue;
}
const odb_SequenceSequenceDouble& odb_MaterialBehaviour::table() const {
  return (data_ ? *data_ : noBehaviour()).table;
}
bool odb_MaterialBehaviour::temperatureDependency() const {
  return data_ && numberOf(*data_, "temperatureDependency") != 0;
}
int odb_MaterialBehaviour::dependencies() const {
  return data_ ? static_cast<int>(numberOf(*data_, "dependencies")) : 0;
}

const odb_String& odb_Density::distributionType() const {
  return textOf(data_ ? *data_ : noBehaviour(), "distributionType");
}
const odb_String& odb_Density::fieldName() const {
  return textOf(data_ ? *data_ : noBehaviour(), "fieldName");
}

const odb_String& odb_Elastic::type() const {
  return textOf(data_ ? *data_ : noBehaviour(), "type");
}
const odb_String& odb_Elastic::moduli() const {
  return textOf(data_ ? *data_ : noBehaviour(), "moduli");
}
bool odb_Elastic::noCompression() const {
  return data_ && numberOf(*data_, "noCompression") != 0;
}
bool odb_Elastic::noTension() const {
  return data_ && numberOf(*data_, "noTension") != 0;
}
const odb_FailStress& odb_Elastic::failStress() const {
  return need().material->failStress;
}
const odb_FailStrain& odb_Elastic::failStrain() const {
  return need().material->failStrain;
}

odb_FailStress& odb_Elastic::FailStress(const odb_SequenceSequenceDouble& table,
                                        bool temperatureDependency, int dependencies) {
  if (!hasValue()) failUsage("limits want an elastic behaviour");
  MaterialData& material = *need().material;
  setBehaviour(material, kFailStress, table, temperatureDependency, dependencies);
  return material.failStress;
}

odb_FailStrain& odb_Elastic::FailStrain(const odb_SequenceSequenceDouble& table,
                                        bool temperatureDependency, int dependencies) {
  if (!hasValue()) failUsage("limits want an elastic behaviour");
  MaterialData& material = *need().material;
  setBehaviour(material, kFailStrain, table, temperatureDependency, dependencies);
  return material.failStrain;
}

const odb_String& odb_Material::name() const {
  return need().name;
}
odb_Density& odb_Material::density() const {
  return need().density;
}
odb_Elastic& odb_Material::elastic() const {
  return need().elastic;
}
odb_AcousticMedium& odb_Material::acousticMedium() const {
  return need().acousticMedium;
}

odb_Density& odb_Material::Density(const odb_SequenceSequenceDouble& table,
                                   bool temperatureDependency, int dependencies,
                                   const odb_String& distributionType,
                                   const odb_String& fieldName) {
  BehaviourData& behaviour =
      setBehaviour(need(), kDensity, table, temperatureDependency, dependencies);
  behaviour.properties["distributionType"].value = distributionType;
  behaviour.properties["fieldName"].value = fieldName;
  return need().density;
}

odb_Elastic& odb_Material::Elastic(const odb_SequenceSequenceDouble& table, const odb_String& type,
                                   bool noCompression, bool noTension, bool temperatureDependency,
                                   int dependencies, const odb_String& moduli) {
  BehaviourData& behaviour =
      setBehaviour(need(), kElastic, table, temperatureDependency, dependencies);
  behaviour.properties["type"].value = type;
  behaviour.properties["noCompression"].value = noCompression;
  behaviour.properties["noTension"].value = noTension;
  behaviour.properties["moduli"].value = moduli;
  return need().elastic;
}

odb_AcousticMedium& odb_Material::AcousticMedium(const odb_SequenceSequenceDouble& table,
                                                 bool temperatureDependency, int dependencies) {
  setBehaviour(need(), kAcousticMedium, table, temperatureDependency, dependencies);
  return need().acousticMedium;
}

odb_MaterialContainer& odb_MaterialApi::materials() const {
  return need().model().materialHandles;
}

odb_Material& odb_MaterialApi::Material(const odb_String& name) {
  Database& database = need();
  database.needWritable();
  Model& model = database.model();
  if (name.empty() || model.materialHandles.isMember(name)) {
    failUsage(std::string("material \"") + name.CStr() + "\" has no name or exists already");
  }
  MaterialData& material = model.materials.emplace_back();
  material.database = &database;
  material.name = name;
  setUpMaterial(material);
  database.touch();
  return model.materialHandles.engineItems().add(name, odb_Material(&material));
}
