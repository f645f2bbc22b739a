// SPDX-License-Identifier: BSD-3-Clause
// What databases hold but the API's documented write side cannot write, and what only this library
// has: for programs that make databases, and tests. Free functions on the public handles. All throw
// odb_Exception on a read-only database.
#pragma once

#include <odb_API.h>
#include <odb_SectionTypes.h>

#include <string>
#include <utility>
#include <vector>

namespace odb_embedded {

struct JobData {
  odb_Enum::odb_AnalysisCodeEnum analysisCode = odb_Enum::UNKNOWN_ANALYSIS_CODE;
  odb_Enum::odb_PrecisionEnum precision = odb_Enum::SINGLE_PRECISION;
  odb_String name;
  odb_String version;
  odb_String creationTime;
  odb_String modificationTime;
  odb_String machineName;
  std::vector<odb_Enum::odb_ProductAddOnEnum> productAddOns;
};
void setJobData(odb_Odb& odb, const JobData& job);

// Name of the root assembly; "ASSEMBLY" until it is set.
void setAssemblyName(odb_Odb& odb, const odb_String& name);
void setTitle(odb_Odb& odb, const odb_String& analysisTitle, const odb_String& description);

// Adds or replaces the user annotation `key`.
void setAnnotation(odb_Odb& odb, const odb_String& key, const odb_String& text);

struct Curve {
  odb_String name;
  odb_String sourceDescription;
  odb_String contentDescription;
  odb_String positionDescription;
  odb_String xAxisLabel;
  odb_String yAxisLabel;
  odb_String legendLabel;
  odb_String description;
  odb_SequenceSequenceFloat points;  // rows of x, y
};
void addCurve(odb_Odb& odb, const Curve& curve);

void setSectorDefinition(odb_Odb& odb, int numSectors, const odb_SequenceSequenceFloat& axis);

// A rigid body with the analytic surface of `surfaceOwner` (a part or instance that has one). On a
// part, an instance or the assembly.
void addRigidBody(odb_DiscreteEntity& owner, const odb_Set& reference,
                  const odb_PartEntity& surfaceOwner,
                  odb_Enum::odb_PositionEnum position = odb_Enum::INPUT, bool isothermal = false);

// A surface that is made of nodes. On the assembly, one list of labels per instance name.
odb_Set& addNodeSurface(odb_DiscreteEntity& owner, const odb_String& name,
                        const odb_SequenceInt& labels);
odb_Set& addNodeSurface(odb_Assembly& owner, const odb_String& name,
                        const odb_SequenceString& instanceNames,
                        const odb_SequenceSequenceInt& labels);

// Adds the internal sets " ALL NODES" and " ALL ELEMENTS" (leading blank) to the assembly.
void addInternalSets(odb_Odb& odb);

// Bulk forms of addNodes and addElements: n labels, 3 coordinates per node, nNodes labels per
// element.
void addNodes(odb_DiscreteEntity& owner, int n, const int* labels, const float* coordinates);
void addElements(odb_DiscreteEntity& owner, int n, const int* labels, int nNodes,
                 const int* connectivity, const odb_String& type,
                 const odb_SectionCategory& category = odb_SectionCategory());

struct MassData {
  double mass = 0;
  double acousticMass = 0;
  std::vector<double> massCenter;          // 0 or 3 numbers
  std::vector<double> inertiaAboutCenter;  // 0 or 6
  std::vector<double> inertiaAboutOrigin;  // 0 or 6
  std::vector<double> acousticMassCenter;  // 0 or 3
};
void setMassData(odb_Step& step, const MassData& data);

// Overrides what Step::Frame derived from the domain.
struct FrameNumbers {
  int mode = 0;
  int cyclicModeNumber = 0;
  float frequency = 0;
};
void setFrameNumbers(odb_Frame& frame, const FrameNumbers& numbers);
// Both frames belong to the same step.
void setAssociatedFrame(odb_Frame& frame, const odb_Frame& other);

// A beam cross-section, a constraint, an interaction, ... by the name of its class, with values,
// sets and tables by name of the getter, such as "positionTolerance" of an odb_Tie. Truth values
// are given as bool. What is left out reads back as empty, 0, false or absent. Friction of an
// odb_ContactProperty has names that begin with "tangentialBehavior.", such as
// "tangentialBehavior.formulation" and the table "tangentialBehavior.table".
struct ObjectDescription {
  odb_String type;  // such as "odb_Coupling"
  odb_String name;
  std::vector<std::pair<std::string, odb_Union>> values = {};
  std::vector<std::pair<std::string, odb_Set>> sets = {};
  std::vector<std::pair<std::string, odb_SequenceSequenceDouble>> tables = {};
};
// Throw odb_Exception also when the name is taken, when a class of odb_Constraint.h,
// odb_Interaction.h or odb_Amplitude.h has no getter of that name, and for sets of another
// database. Objects of other classes take any names.
void addProfile(odb_Odb& odb, const ObjectDescription& profile);
void addConstraint(odb_Odb& odb, const ObjectDescription& constraint);
void addInteraction(odb_Odb& odb, const ObjectDescription& interaction);
void addInteractionProperty(odb_Odb& odb, const ObjectDescription& property);
void addAmplitude(odb_Odb& odb, const ObjectDescription& amplitude);
// Reading them back: the value or set of that name. Throws odb_Exception when there is none.
odb_Union objectValue(const odb_Constraint& constraint, const odb_String& name);

// ---- The file ----

// Whether save() compresses arrays; off by default. To be called before the first data are added.
void setCompression(odb_Odb& odb, bool on);

// Releases: the current one, and the one before it, which has another layout.
constexpr int kCurrentRelease = 2;
constexpr int kOldRelease = 1;

// Writes what `odb` holds to `path` in the layout of the old release.
void saveInOldLayout(odb_Odb& odb, const odb_String& path);
// Changes the release that the closed database at `path` claims, and nothing else.
void stampRelease(const odb_String& path, int release);
// The release that the database at `path` claims. Throws odb_Exception when it is no database.
int releaseOf(const odb_String& path);

// True when both sections categories are one object.
inline bool sameCategory(const odb_SectionCategory& a, const odb_SectionCategory& b) {
  return a == b;
}

}  // namespace odb_embedded

#include <odb_embedded_results.h>
