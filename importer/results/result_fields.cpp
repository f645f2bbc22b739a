// SPDX-License-Identifier: BSD-3-Clause
// Field names: CalculiX CrunchiX User's Manual, keywords *NODE FILE, *EL FILE and *CONTACT FILE,
// which list the name of each variable in the result file.
#include "importer/results/result_fields.h"

#include <algorithm>

namespace odbs::importer {

namespace {

struct Rule {
  std::string_view frd;          // name of the block
  std::string_view component;    // of the block; "": the field takes all of them
  std::string_view name;         //
  std::string_view description;  //
  bool ofElements;
};

constexpr Rule kRules[] = {
    {"DISP", "", "U", "Spatial displacement", false},
    {"VELO", "", "V", "Spatial velocity", false},
    {"FORC", "", "RF", "Reaction force", false},
    {"NDTEMP", "", "NT11", "Nodal temperature", false},
    {"RFL", "", "RFL11", "Reaction fluxes", false},
    {"ELPOT", "", "EPOT", "Electrical potential", false},
    {"CONTACT", "COPEN", "COPEN", "Contact opening", false},
    {"CONTACT", "CSLIP1", "CSLIP1", "Relative tangential motion direction 1", false},
    {"CONTACT", "CSLIP2", "CSLIP2", "Relative tangential motion direction 2", false},
    {"CONTACT", "CPRESS", "CPRESS", "Contact pressure", false},
    {"CONTACT", "CSHEAR1", "CSHEAR1", "Frictional shear direction 1", false},
    {"CONTACT", "CSHEAR2", "CSHEAR2", "Frictional shear direction 2", false},
    {"CELS", "", "CELS", "Contact energy", false},
    {"ERROR", "", "ERROR", "Stress error estimate in per cent", false},
    {"HERROR", "", "HERROR", "Heat flux error estimate in per cent", false},
    {"STRESS", "", "S", "Stress components", true},
    {"ZZSTR", "", "ZZS", "Stress components after Zienkiewicz and Zhu", true},
    {"TOSTRAIN", "", "E", "Total strain components", true},
    {"MESTRAIN", "", "ME", "Mechanical strain components", true},
    {"THSTRAIN", "", "THE", "Thermal strain components", true},
    {"PE", "", "PEEQ", "Equivalent plastic strain", true},
    {"ENER", "", "ENER", "Energy density", true},
    {"SDV", "", "SDV", "Solution dependent state variables", true},
    {"FLUX", "", "HFL", "Heat flux vector", true},
    {"CURR", "", "ECD", "Electrical current density", true},
    {"EMFE", "", "EFLX", "Electrical field", true},
    {"EMFB", "", "EMB", "Magnetic flux density", true},
    {"MAFLOW", "", "MFL", "Mass flow rate", false},
};

// What stands for stresses in beams where section forces were asked for.
struct SectionField {
  std::string_view name, description;
  int sources[3];
};
constexpr SectionField kSectionFields[] = {
    {"SF", "Section forces: normal force, shear forces along n2 and n1", {2, 1, 0}},
    {"SM", "Section moments: bending about n1 and n2, torque", {4, 5, 3}},
};

// Stored component of a vector or tensor by its indices, or -1.
int sourceOf(const FrdResult& head, int type, int row, int column) {
  int stored = 0;
  for (const FrdComponent& component : head.components) {
    if (component.derived) continue;
    const bool same = component.row == row && component.column == column;
    const bool turned = component.row == column && component.column == row;
    if (component.type == type && (same || (type == 4 && turned))) return stored;
    ++stored;
  }
  return -1;
}

bool tryShape(const FrdResult& head, FieldShape shape, std::vector<int>& sources) {
  constexpr int kTensor[6][2] = {{1, 1}, {2, 2}, {3, 3}, {1, 2}, {1, 3}, {2, 3}};
  sources.clear();
  if (shape == FieldShape::vector) {
    for (int i = 1; i <= 3; ++i) sources.push_back(sourceOf(head, 2, i, 0));
  } else {
    for (const auto& index : kTensor) sources.push_back(sourceOf(head, 4, index[0], index[1]));
  }
  return std::find(sources.begin(), sources.end(), -1) == sources.end();
}

// The components that `used` does not hold, each as a separate scalar.
void addScalars(const FrdResult& head, const TargetField& pattern, const std::vector<int>& used,
                std::vector<TargetField>& fields) {
  int stored = 0;
  for (const FrdComponent& component : head.components) {
    if (component.derived) continue;
    const int source = stored++;
    if (std::find(used.begin(), used.end(), source) != used.end()) continue;
    TargetField field = pattern;
    field.shape = FieldShape::scalar;
    field.sources = {source};
    // A state variable is named like its component: SDV1.
    if (head.nStored > 1) {
      const bool prefixed = component.name.compare(0, pattern.name.size(), pattern.name) == 0;
      field.name = prefixed ? component.name : pattern.name + "_" + component.name;
      field.description += ", " + component.name;
    }
    fields.push_back(std::move(field));
  }
}

}  // namespace

std::vector<TargetField> targetFields(const FrdResult& head, bool sectionForces) {
  std::vector<TargetField> fields;
  if (sectionForces && head.name == "STRESS" && head.nStored == 6) {
    fields = targetFields(head);
    fields[0].elements = FieldElements::others;
    // Stored are xx yy zz xy yz zx: shear forces along n1 and n2, normal force, torque, bending
    // moments about n1 and n2.
    for (const auto& [name, description, sources] : kSectionFields) {
      TargetField field = fields[0];
      field.name = std::string(name);
      field.description = std::string(description);
      field.shape = FieldShape::vector;
      field.elements = FieldElements::lines;
      field.sources.assign(sources, sources + 3);
      fields.push_back(std::move(field));
    }
    return fields;
  }
  TargetField field;
  field.name = head.name;
  field.description = head.name;
  for (const Rule& rule : kRules) {
    if (rule.frd != head.name) continue;
    field.name = std::string(rule.name);
    field.description = std::string(rule.description);
    field.ofElements = rule.ofElements;
    field.addsUp = rule.frd == "FORC" || rule.frd == "RFL" || rule.frd == "CELS";
    if (rule.component.empty()) break;
    int stored = 0;
    for (const FrdComponent& component : head.components) {
      if (component.derived) continue;
      if (component.name == rule.component) {
        fields.push_back(field);
        fields.back().sources = {stored};
      }
      ++stored;
    }
  }
  if (!fields.empty()) return fields;
  // Without a name that cannot be told from others, a scalar would be nobody's.
  if (field.name.empty()) field.name = field.description = "UNNAMED";
  for (const FieldShape shape : {FieldShape::tensor, FieldShape::vector}) {
    std::vector<int> sources;
    if (!tryShape(head, shape, sources)) continue;
    const bool strain = field.name == "E" || field.name == "ME" || field.name == "THE";
    field.shape = strain && shape == FieldShape::tensor ? FieldShape::strain : shape;
    field.sources = sources;
    fields.push_back(field);
    break;
  }
  addScalars(head, field, fields.empty() ? std::vector<int>() : fields[0].sources, fields);
  return fields;
}

std::string imaginaryName(std::string_view name) {
  // Names have eight characters at most: TOSTRAIN becomes TOSTRAII.
  std::string imaginary(name);
  if (imaginary.size() == 8) imaginary.pop_back();
  return imaginary + "I";
}

bool isRedundant(std::string_view name) {
  constexpr std::string_view kPolar[] = {"PDISP", "PSTRESS", "PNDTEMP", "PFORC"};
  return std::find(std::begin(kPolar), std::end(kPolar), name) != std::end(kPolar);
}

}  // namespace odbs::importer
