// SPDX-License-Identifier: BSD-3-Clause
// Regions by kind and name.
#include "regions/region_resolver.h"

#include <odb_SectionTypes.h>

#include <algorithm>
#include <set>

#include "lookup/category_names.h"
#include "lookup/instance_names.h"
#include "lookup/section_elements.h"
#include "lookup/section_layups.h"
#include "lookup/section_materials.h"
#include "server/core/label_set.h"
#include "server/core/sdk_mesh_runs.h"

namespace odbs {

namespace {

// Takes labels in order, each once.
class OrderedLabels {
 public:
  explicit OrderedLabels(std::vector<int>& labels) : labels_(labels) {}
  void add(int label) {
    if (known_.add(label)) labels_.push_back(label);
  }

 private:
  std::vector<int>& labels_;
  LabelSet known_;
};

// A region's name and the instances, or the assembly, it is looked for in.
struct Scope {
  std::vector<std::string> owners;
  std::string name;
};

// The instances in the order of their names, then the assembly, which has the connectors and
// reference nodes.
std::vector<std::string> allOwners(odb_Assembly& assembly) {
  std::vector<std::string> owners = sortedInstanceNames(assembly);
  const odb_String name = assembly.name();
  if (!assembly.instances().isMember(name)) owners.emplace_back(name.CStr());
  return owners;
}

class Resolver {
 public:
  Resolver(odb_Odb& odb, const RegionRequest& request)
      : odb_(odb),
        assembly_(odb.rootAssembly()),
        kind_(static_cast<RegionKind>(request.kind)),
        value_(request.value) {}

  // False when nothing in the scope has the name; the region then has empty shares.
  bool resolve(const Scope& scope, Region& region) {
    region = {};
    bool found = false;
    const std::vector<std::string> sections = sectionsOf(scope.name);
    for (const std::string& owner : scope.owners) {
      region.shares.emplace_back();
      RegionShare& share = region.shares.back();
      share.instance = owner;
      share.ofAssembly = !assembly_.instances().isMember(owner.c_str());
      found |= takeShare(scope.name, sections, share);
    }
    if (kind_ == RegionKind::kSection && value_ > 0) region.points = {value_};
    if (isOneLayer()) region.points = pointsOfLayer(sections);
    return found;
  }

 private:
  const odb_DiscreteEntity& ownerOf(const RegionShare& share) const {
    if (share.ofAssembly) return assembly_;
    return assembly_.instances()[share.instance.c_str()];
  }

  bool takeShare(const std::string& name, const std::vector<std::string>& sections,
                 RegionShare& share) {
    const odb_DiscreteEntity& owner = ownerOf(share);
    switch (kind_) {
      case RegionKind::kElementSet:
        return takeSets(assembly_.elementSets(), owner.elementSets(), name, share);
      case RegionKind::kNodeSet:
        return takeSets(assembly_.nodeSets(), owner.nodeSets(), name, share);
      case RegionKind::kSurface:
        return takeSets(assembly_.surfaces(), owner.surfaces(), name, share);
      case RegionKind::kInstance:
        if (share.instance != name) return false;
        return takeElements(owner, share, [](const sdk::ElementRun&) { return true; });
      case RegionKind::kElementType:
        return takeElements(owner, share, [&](const sdk::ElementRun& run) {
          return name == run.first.type().CStr();
        });
      default:
        return takeSections(owner, sections, share);
    }
  }

  // The assembly's set of that name, restricted to the instance, and the instance's own.
  bool takeSets(const odb_SetRepository& ofAssembly, const odb_SetRepository& ofOwner,
                const std::string& name, RegionShare& share) {
    bool found = false;
    OrderedLabels elements(share.elements);
    OrderedLabels nodes(share.nodes);
    // The assembly's own members go by an empty name.
    const odb_String instance(share.ofAssembly ? "" : share.instance.c_str());
    for (const odb_SetRepository* sets : {&ofAssembly, share.ofAssembly ? nullptr : &ofOwner}) {
      if (!sets || !sets->isMember(name.c_str())) continue;
      found = true;
      const odb_Set set = (*sets)[name.c_str()];
      if (kind_ == RegionKind::kSurface) {
        takeSurface(set, instance, share, nodes);
      } else if (kind_ == RegionKind::kElementSet) {
        takeLabels(set.elements(instance), elements);
      } else {
        takeLabels(set.nodes(instance), nodes);
      }
    }
    return found;
  }

  template <typename Members>
  static void takeLabels(const Members& members, OrderedLabels& labels) {
    const int n = members.size();
    for (int i = 0; i < n; ++i) labels.add(members[i].label());
  }

  static void takeSurface(const odb_Set& set, const odb_String& instance, RegionShare& share,
                          OrderedLabels& nodes) {
    const odb_SequenceElement& elements = set.elements(instance);
    const odb_SequenceElementFace& faces = set.faces(instance);
    const int n = std::min(elements.size(), faces.size());
    for (int i = 0; i < n; ++i) {
      share.elements.push_back(elements[i].label());
      share.faces.push_back(static_cast<int>(faces[i]));
    }
    if (elements.size() == 0) takeLabels(set.nodes(instance), nodes);
  }

  template <typename IsMeant>
  static bool takeElements(const odb_DiscreteEntity& owner, RegionShare& share, IsMeant isMeant) {
    sdk::forEachElementRun(owner.elements(), [&](const sdk::ElementRun& run) {
      if (isMeant(run)) {
        share.elements.insert(share.elements.end(), run.labels, run.labels + run.n);
      }
    });
    return !share.elements.empty();
  }

  // Elements by section assignment; by section category for a section that is assigned nowhere.
  bool takeSections(const odb_DiscreteEntity& owner, const std::vector<std::string>& sections,
                    RegionShare& share) {
    for (const std::string& section : sections) {
      const std::vector<int> assigned =
          share.ofAssembly ? elementsOfSection(assembly_, section)
                           : elementsOfSection(
                                 assembly_, assembly_.instances()[share.instance.c_str()], section);
      share.elements.insert(share.elements.end(), assigned.begin(), assigned.end());
      if (isAssigned(section)) continue;
      sdk::forEachElementRun(owner.elements(), [&](const sdk::ElementRun& run) {
        const std::string category = run.first.sectionCategory().name().CStr();
        if (sectionNameOfCategory(category).value_or(category) != section) return;
        share.elements.insert(share.elements.end(), run.labels, run.labels + run.n);
      });
    }
    std::sort(share.elements.begin(), share.elements.end());
    share.elements.erase(std::unique(share.elements.begin(), share.elements.end()),
                         share.elements.end());
    return !share.elements.empty();
  }

  bool isAssigned(const std::string& section) {
    if (!assignedKnown_) {
      noteAssigned(assembly_.sectionAssignments());
      for (const std::string& name : sortedInstanceNames(assembly_)) {
        noteAssigned(assembly_.instances()[name.c_str()].sectionAssignments());
      }
      assignedKnown_ = true;
    }
    return assigned_.count(section) != 0;
  }

  void noteAssigned(const odb_SequenceSectionAssignment& assignments) {
    for (int i = 0; i < assignments.size(); ++i) {
      assigned_.insert(odb_SectionAssignment(assignments[i]).sectionName().CStr());
    }
  }

  // Full names of the sections that the name, of a section or of a material, means.
  std::vector<std::string> sectionsOf(const std::string& name) {
    std::set<std::string> sections;
    if (kind_ == RegionKind::kMaterial) {
      for (const SectionMaterials& section : sectionMaterialsOf(odb_)) {
        if (section.uses(name)) sections.insert(section.name);
      }
    } else if (kind_ == RegionKind::kSection || kind_ == RegionKind::kLayer) {
      for (const SectionMaterials& section : sectionMaterialsOf(odb_)) {
        if (!isOneLayer() && isSectionNamed(section.name, name)) sections.insert(section.name);
      }
      for (const SectionLayup& layup : sectionLayupsOf(odb_).all()) {
        if (layup.isNamed(name) && hasLayer(layup)) sections.insert(layup.section);
      }
    }
    return {sections.begin(), sections.end()};
  }

  // As elsewhere, layer 0 is the whole section.
  bool isOneLayer() const { return kind_ == RegionKind::kLayer && value_ != 0; }

  bool hasLayer(const SectionLayup& layup) const {
    return !isOneLayer() ||
           std::any_of(layup.layers.begin(), layup.layers.end(),
                       [this](const LayupLayer& layer) { return layer.number == value_; });
  }

  std::vector<int> pointsOfLayer(const std::vector<std::string>& sections) {
    std::vector<int> points;
    OrderedLabels taken(points);
    for (const SectionLayup& layup : sectionLayupsOf(odb_).all()) {
      if (std::find(sections.begin(), sections.end(), layup.section) == sections.end()) continue;
      for (const LayupLayer& layer : layup.layers) {
        if (layer.number != value_) continue;
        for (const int point : layer.points) taken.add(point);
      }
    }
    return points;
  }

  odb_Odb& odb_;
  odb_Assembly& assembly_;
  RegionKind kind_;
  int value_;
  bool assignedKnown_ = false;
  std::set<std::string> assigned_;  // full names of sections that an assignment uses
};

}  // namespace

Region resolveRegion(odb_Odb& odb, const RegionRequest& request) {
  Resolver resolver(odb, request);
  const std::vector<std::string> owners = allOwners(odb.rootAssembly());
  Region region;
  const Scope everywhere{owners, request.name};
  if (request.kind == static_cast<int>(RegionKind::kInstance)) {
    const bool known = std::count(owners.begin(), owners.end(), request.name) != 0;
    resolver.resolve(known ? Scope{{request.name}, request.name} : everywhere, region);
    return region;
  }
  if (resolver.resolve(everywhere, region)) return region;
  for (const std::string& owner : owners) {
    // Instance names hold dots too, so that any of them may be the prefix.
    const std::size_t dot = owner.size();
    if (request.name.size() <= dot + 1 || request.name[dot] != '.') continue;
    if (request.name.compare(0, dot, owner) != 0) continue;
    Region within;
    const bool found = resolver.resolve({{owner}, request.name.substr(dot + 1)}, within);
    region = std::move(within);
    if (found) break;
  }
  return region;
}

}  // namespace odbs
