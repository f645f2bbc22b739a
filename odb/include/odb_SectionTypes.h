// SPDX-License-Identifier: BSD-3-Clause
// Section and profile classes, and the section extension that reads and writes them:
//   odb_SectionApi api; odb.extendApi(odb_Enum::odb_SECTION, api);
// Each class goes by two names, odb_X and kseO_X.
#pragma once

#include <odb_ApiExtension.h>
#include <odb_DatumCsys.h>
#include <odb_Section.h>

#include <odb_Orientations.h>

namespace odbs {
namespace engine {
struct PropertyData;
}
}  // namespace odbs

// One layer of a composite: a plain value, copied freely. Getters are named like the arguments of
// SectionLayer.
class odb_SectionLayer {
 public:
  odb_SectionLayer() = default;
  double thickness() const { return thickness_; }
  const odb_String& material() const { return material_; }
  // A number is an angle in degrees, a text the name of an orientation.
  const odb_Union& orientAngle() const { return orientAngle_; }
  int numIntPts() const { return numIntPts_; }
  const odb_String& axis() const { return axis_; }
  float angle() const { return angle_; }
  const odb_String& additionalRotationType() const { return additionalRotationType_; }
  const odb_String& thicknessType() const { return thicknessType_; }
  const odb_String& plyName() const { return plyName_; }
  const odb_DatumCsys& orientation() const { return orientation_; }
  const odb_String& additionalRotationField() const { return additionalRotationField_; }
  const odb_String& thicknessField() const { return thicknessField_; }
  bool operator==(const odb_SectionLayer& other) const { return this == &other; }

 private:
  friend odb_SectionLayer SectionLayer(double, const odb_String&, const odb_Union&, int,
                                       const odb_String&, float, const odb_String&,
                                       const odb_String&, const odb_String&, const odb_DatumCsys&,
                                       const odb_String&, const odb_String&);
  double thickness_ = 0;
  odb_String material_;
  odb_Union orientAngle_ = 0.0;
  int numIntPts_ = 3;
  odb_String axis_;
  float angle_ = 0;
  odb_String additionalRotationType_;
  odb_String thicknessType_;
  odb_String plyName_;
  odb_DatumCsys orientation_;
  odb_String additionalRotationField_;
  odb_String thicknessField_;
};
typedef odb_SectionLayer kseO_SectionLayer;

// A layer for a composite section to be written.
odb_SectionLayer SectionLayer(double thickness, const odb_String& material,
                              const odb_Union& orientAngle = 0.0, int numIntPts = 3,
                              const odb_String& axis = "AXIS_3", float angle = 0,
                              const odb_String& additionalRotationType = "ROTATION_NONE",
                              const odb_String& thicknessType = "SPECIFY_THICKNESS",
                              const odb_String& plyName = "",
                              const odb_DatumCsys& orientation = odb_DatumCsys(),
                              const odb_String& additionalRotationField = "",
                              const odb_String& thicknessField = "");

ODBS_OBJECT_SEQUENCE(odb_SequenceSectionLayer, odb_SectionLayer);
typedef odb_SequenceSectionLayer kseO_SequenceSectionLayer;

// Declares a section class that has a material and nothing else.
#define ODBS_MATERIAL_SECTION(NAME)                                 \
  class odb_##NAME : public odb_Section {                           \
   public:                                                          \
    using odb_Section::odb_Section;                                 \
    ODBS_TYPE_IDENTIFIER(odb_##NAME)                                \
    const odb_String& material() const { return text("material"); } \
  };                                                                \
  typedef odb_##NAME kseO_##NAME

ODBS_MATERIAL_SECTION(CohesiveSection);
ODBS_MATERIAL_SECTION(TrussSection);
ODBS_MATERIAL_SECTION(PEGSection);
ODBS_MATERIAL_SECTION(MembraneSection);
ODBS_MATERIAL_SECTION(GasketSection);

class odb_HomogeneousSolidSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_HomogeneousSolidSection)
  const odb_String& material() const { return text("material"); }
  double thickness() const { return number("thickness"); }
};
typedef odb_HomogeneousSolidSection kseO_HomogeneousSolidSection;

// What the homogeneous and the composite shell share.
class odb_GeometryShellSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_GeometryShellSection)
  const odb_String& thicknessType() const { return text("thicknessType"); }
  bool preIntegrate() const { return number("preIntegrate") != 0; }
  const odb_String& poissonDefinition() const { return text("poissonDefinition"); }
  double poisson() const { return number("poisson"); }
  const odb_String& integrationRule() const { return text("integrationRule"); }
  const odb_String& temperature() const { return text("temperature"); }
  const odb_String& idealization() const { return text("idealization"); }
  odb_Union nTemp() const { return value("nTemp"); }
  odb_Union thicknessModulus() const { return value("thicknessModulus"); }
  bool useDensity() const { return number("useDensity") != 0; }
  double density() const { return number("density"); }
  const odb_String& thicknessField() const { return text("thicknessField"); }
  const odb_String& nodalThicknessField() const { return text("nodalThicknessField"); }
};
typedef odb_GeometryShellSection kseO_GeometryShellSection;

class odb_HomogeneousShellSection : public odb_GeometryShellSection {
 public:
  using odb_GeometryShellSection::odb_GeometryShellSection;
  ODBS_TYPE_IDENTIFIER(odb_HomogeneousShellSection)
  double thickness() const { return number("thickness"); }
  const odb_String& material() const { return text("material"); }
  int numIntPts() const { return static_cast<int>(number("numIntPts", 5)); }
};
typedef odb_HomogeneousShellSection kseO_HomogeneousShellSection;

class odb_CompositeShellSection : public odb_GeometryShellSection {
 public:
  using odb_GeometryShellSection::odb_GeometryShellSection;
  ODBS_TYPE_IDENTIFIER(odb_CompositeShellSection)
  const odb_SequenceSectionLayer& layup() const;
  const odb_SectionLayer& layup(int i) const;
  const odb_String& layupName() const { return text("layupName"); }
  bool symmetric() const { return number("symmetric") != 0; }
  // Not stored by this library: always empty.
  odb_SequenceString rebarLayers() const { return odb_SequenceString(); }
  odb_SequenceDouble transverseShear() const { return odb_SequenceDouble(); }
};
typedef odb_CompositeShellSection kseO_CompositeShellSection;

class odb_CompositeSolidSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_CompositeSolidSection)
  const odb_SequenceSectionLayer& layup() const;
  const odb_SectionLayer& layup(int i) const;
  const odb_String& layupName() const { return text("layupName"); }
  bool symmetric() const { return number("symmetric") != 0; }
};
typedef odb_CompositeSolidSection kseO_CompositeSolidSection;

// Getters beside these three do not exist; reference lengths and angles are unions of a number and
// a text that says "unset".
class odb_ConnectorSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_ConnectorSection)
  const odb_String& assembledType() const { return text("assembledType"); }
  const odb_String& rotationalType() const { return text("rotationalType"); }
  const odb_String& translationalType() const { return text("translationalType"); }
  const odb_String& integration() const { return text("integration"); }
  odb_Union u1ReferenceLength() const { return value("u1ReferenceLength"); }
  odb_Union u2ReferenceLength() const { return value("u2ReferenceLength"); }
  odb_Union u3ReferenceLength() const { return value("u3ReferenceLength"); }
  odb_Union ur1ReferenceAngle() const { return value("ur1ReferenceAngle"); }
  odb_Union ur2ReferenceAngle() const { return value("ur2ReferenceAngle"); }
  odb_Union ur3ReferenceAngle() const { return value("ur3ReferenceAngle"); }
  odb_Union massPerLength() const { return value("massPerLength"); }
  odb_Union contactAngle() const { return value("contactAngle"); }
  double materialFlowFactor() const { return number("materialFlowFactor", 1); }
  bool regularize() const { return number("regularize", 1) != 0; }
  bool defaultTolerance() const { return number("defaultTolerance", 1) != 0; }
  double regularization() const { return number("regularization", 0.03); }
  const odb_String& extrapolation() const { return text("extrapolation"); }
};
typedef odb_ConnectorSection kseO_ConnectorSection;

class odb_PointSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_PointSection)
  double mass() const { return number("mass"); }
};
typedef odb_PointSection kseO_PointSection;

class odb_BeamSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_BeamSection)
  const odb_String& profile() const { return text("profile"); }
  const odb_String& material() const { return text("material"); }
};
typedef odb_BeamSection kseO_BeamSection;

// A shell section that is known by its stiffness alone.
class odb_ShellSection : public odb_Section {
 public:
  using odb_Section::odb_Section;
  ODBS_TYPE_IDENTIFIER(odb_ShellSection)
};
typedef odb_ShellSection kseO_ShellSection;

// A beam cross-section.
class odb_Profile : public odbs::Handle<odbs::engine::PropertyData> {
 public:
  using Handle::Handle;
  ODBS_TYPE_IDENTIFIER(odb_Profile)
  const odb_String& name() const;
  const odbs::TypeIdentifier& subTypeIdentifier() const;
  std::shared_ptr<void>& engineCastSlot() const;
};
typedef odb_Profile kseO_Profile;

class odb_ProfileContainer : public odbs::RepositoryOf<odb_Profile> {
 public:
  using RepositoryOf::RepositoryOf;
};
class odb_ProfileContainerIT : public odbs::RepositoryIterator<odb_Profile> {
 public:
  odb_ProfileContainerIT(const odbs::RepositoryOf<odb_Profile>& container)
      : odbs::RepositoryIterator<odb_Profile>(container) {}
};
typedef odb_ProfileContainer kseO_ProfileContainer;
typedef odb_ProfileContainerIT kseO_ProfileContainerIT;

// Sections and profiles of one database. Containers iterate by name. A constructor throws
// odb_Exception on a read-only database, a name that is taken, or a material (not empty) that the
// database does not have.
class odb_SectionApi : public odb_ApiExtension {
 public:
  odb_SectionApi() : odb_ApiExtension(odb_Enum::odb_SECTION) {}
  odb_SectionContainer& sections() const;
  odb_ProfileContainer& profiles() const;
  int numProfiles() const;

  odb_HomogeneousSolidSection& HomogeneousSolidSection(const odb_String& name,
                                                       const odb_String& material,
                                                       double thickness = 1);
  odb_HomogeneousShellSection& HomogeneousShellSection(
      const odb_String& name, double thickness, const odb_String& material, int numIntPts = 5,
      const odb_String& thicknessType = "UNIFORM", bool preIntegrate = false,
      const odb_String& poissonDefinition = "DEFAULT", double poisson = 0.5,
      const odb_String& integrationRule = "SIMPSON", const odb_String& temperature = "GRADIENT",
      const odb_String& idealization = "NO_IDEALIZATION", const odb_Union& nTemp = odb_Union(),
      const odb_Union& thicknessModulus = odb_Union(), bool useDensity = false, double density = 0,
      const odb_String& thicknessField = "", const odb_String& nodalThicknessField = "");
  odb_CompositeShellSection& CompositeShellSection(
      const odb_String& name, const odb_SequenceSectionLayer& layup, bool symmetric = false,
      const odb_String& layupName = "", const odb_String& thicknessType = "UNIFORM",
      bool preIntegrate = false, const odb_String& poissonDefinition = "DEFAULT",
      double poisson = 0.5, const odb_String& integrationRule = "SIMPSON",
      const odb_String& temperature = "GRADIENT",
      const odb_String& idealization = "NO_IDEALIZATION", const odb_Union& nTemp = odb_Union(),
      const odb_Union& thicknessModulus = odb_Union(), bool useDensity = false, double density = 0,
      const odb_String& thicknessField = "", const odb_String& nodalThicknessField = "");
  odb_CompositeSolidSection& CompositeSolidSection(const odb_String& name,
                                                   const odb_SequenceSectionLayer& layup,
                                                   bool symmetric = false,
                                                   const odb_String& layupName = "");
  odb_ConnectorSection& ConnectorSection(const odb_String& name,
                                         const odb_String& assembledType = "NONE",
                                         const odb_String& rotationalType = "NONE",
                                         const odb_String& translationalType = "NONE",
                                         const odb_String& integration = "UNSPECIFIED",
                                         const odb_Union& u1ReferenceLength = odb_Union("NONE"),
                                         const odb_Union& u2ReferenceLength = odb_Union("NONE"),
                                         const odb_Union& u3ReferenceLength = odb_Union("NONE"),
                                         const odb_Union& ur1ReferenceAngle = odb_Union("NONE"),
                                         const odb_Union& ur2ReferenceAngle = odb_Union("NONE"),
                                         const odb_Union& ur3ReferenceAngle = odb_Union("NONE"),
                                         const odb_Union& massPerLength = odb_Union("NONE"),
                                         const odb_Union& contactAngle = odb_Union("NONE"),
                                         double materialFlowFactor = 1, bool regularize = true,
                                         bool defaultTolerance = true, double regularization = 0.03,
                                         const odb_String& extrapolation = "CONSTANT");
  odb_PointSection& PointSection(const odb_String& name, double mass);
  odb_CohesiveSection& CohesiveSection(const odb_String& name, const odb_String& material);
  odb_TrussSection& TrussSection(const odb_String& name, const odb_String& material);
  odb_PEGSection& PEGSection(const odb_String& name, const odb_String& material);
  odb_MembraneSection& MembraneSection(const odb_String& name, const odb_String& material);
  odb_GasketSection& GasketSection(const odb_String& name, const odb_String& material);
  odb_BeamSection& BeamSection(const odb_String& name, const odb_String& profile = "",
                               const odb_String& material = "");
  odb_ShellSection& ShellSection(const odb_String& name);
};
typedef odb_SectionApi kseO_ApiExtension;
