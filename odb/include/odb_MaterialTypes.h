// SPDX-License-Identifier: BSD-3-Clause
// Material classes, and the material extension that reads and writes them:
//   odb_MaterialApi api; odb.extendApi(odb_Enum::odb_MATERIAL, api);
// Each class goes by two names, odb_X and kmaO_X.
#pragma once

#include <odb_ApiExtension.h>
#include <odb_Sequences.h>
#include <odb_engine/repository.h>
#include <odb_engine/typed.h>

namespace odbs {
namespace engine {
struct MaterialData;
struct BehaviourData;
}  // namespace engine
}  // namespace odbs

// What all behaviours of a material have.
class odb_MaterialBehaviour : public odbs::Handle<odbs::engine::BehaviourData> {
 public:
  using Handle::Handle;
  // False when the material has no such behaviour; the other getters then give empty values.
  bool hasValue() const;
  // Rows of constants, with temperature and field variables at the end where they depend on them.
  const odb_SequenceSequenceDouble& table() const;
  bool temperatureDependency() const;
  // Number of field variables that the constants depend on.
  int dependencies() const;
};

class odb_Density : public odb_MaterialBehaviour {
 public:
  using odb_MaterialBehaviour::odb_MaterialBehaviour;
  const odb_String& distributionType() const;
  const odb_String& fieldName() const;
};

class odb_FailStress : public odb_MaterialBehaviour {
 public:
  using odb_MaterialBehaviour::odb_MaterialBehaviour;
};

class odb_FailStrain : public odb_MaterialBehaviour {
 public:
  using odb_MaterialBehaviour::odb_MaterialBehaviour;
};

class odb_AcousticMedium : public odb_MaterialBehaviour {
 public:
  using odb_MaterialBehaviour::odb_MaterialBehaviour;
};

class odb_Elastic : public odb_MaterialBehaviour {
 public:
  using odb_MaterialBehaviour::odb_MaterialBehaviour;
  // ISOTROPIC, ORTHOTROPIC, ANISOTROPIC, ENGINEERING_CONSTANTS, LAMINA, TRACTION, COUPLED_TRACTION,
  // SHORT_FIBER, SHEAR or BILAMINA.
  const odb_String& type() const;
  // LONG_TERM or INSTANTANEOUS.
  const odb_String& moduli() const;
  bool noCompression() const;
  bool noTension() const;
  const odb_FailStress& failStress() const;
  const odb_FailStrain& failStrain() const;

  // Add limits. Throw odb_Exception on a read-only database or without an elastic behaviour.
  odb_FailStress& FailStress(const odb_SequenceSequenceDouble& table,
                             bool temperatureDependency = false, int dependencies = 0);
  odb_FailStrain& FailStrain(const odb_SequenceSequenceDouble& table,
                             bool temperatureDependency = false, int dependencies = 0);
};

class odb_Material : public odbs::Handle<odbs::engine::MaterialData> {
 public:
  using Handle::Handle;
  const odb_String& name() const;
  odb_Density& density() const;
  odb_Elastic& elastic() const;
  odb_AcousticMedium& acousticMedium() const;

  // Add or replace a behaviour. Throw odb_Exception on a read-only database.
  odb_Density& Density(const odb_SequenceSequenceDouble& table, bool temperatureDependency = false,
                       int dependencies = 0, const odb_String& distributionType = "UNIFORM",
                       const odb_String& fieldName = "");
  odb_Elastic& Elastic(const odb_SequenceSequenceDouble& table,
                       const odb_String& type = "ISOTROPIC", bool noCompression = false,
                       bool noTension = false, bool temperatureDependency = false,
                       int dependencies = 0, const odb_String& moduli = "LONG_TERM");
  odb_AcousticMedium& AcousticMedium(const odb_SequenceSequenceDouble& table,
                                     bool temperatureDependency = false, int dependencies = 0);
};

class odb_MaterialContainer : public odbs::RepositoryOf<odb_Material> {
 public:
  using RepositoryOf::RepositoryOf;
};
class odb_MaterialContainerIT : public odbs::RepositoryIterator<odb_Material> {
 public:
  odb_MaterialContainerIT(const odbs::RepositoryOf<odb_Material>& container)
      : odbs::RepositoryIterator<odb_Material>(container) {}
};

// Materials of one database, iterated by name.
class odb_MaterialApi : public odb_ApiExtension {
 public:
  odb_MaterialApi() : odb_ApiExtension(odb_Enum::odb_MATERIAL) {}
  odb_MaterialContainer& materials() const;
  // Throws odb_Exception on a read-only database or a name that is taken.
  odb_Material& Material(const odb_String& name);
};

typedef odb_MaterialApi kmaO_ApiExtension;
typedef odb_MaterialContainer kmaO_MaterialContainer;
typedef odb_MaterialContainerIT kmaO_MaterialContainerIT;
typedef odb_Material kmaO_Material;
typedef odb_Density kmaO_Density;
typedef odb_Elastic kmaO_Elastic;
typedef odb_FailStrain kmaO_FailStrain;
typedef odb_FailStress kmaO_FailStress;
typedef odb_AcousticMedium kmaO_AcousticMedium;
