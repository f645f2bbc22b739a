// SPDX-License-Identifier: BSD-3-Clause
// What can be done only when the whole deck is read: sorting, set members, the checks that names
// and labels lead somewhere.
#include <algorithm>
#include <limits>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

constexpr std::int64_t kMaxMembers = 500'000'000;  // of all sets together

bool contains(const std::vector<std::int32_t>& sorted, std::int32_t label) {
  return std::binary_search(sorted.begin(), sorted.end(), label);
}

// Node labels without gaps, the usual case, need no search.
class LabelCheck {
 public:
  explicit LabelCheck(const std::vector<std::int32_t>& sorted) : sorted_(sorted) {
    if (sorted.empty()) return;
    const std::int64_t span = std::int64_t{sorted.back()} - sorted.front() + 1;
    dense_ = span == static_cast<std::int64_t>(sorted.size());
    if (!dense_ && span < 16 * static_cast<std::int64_t>(sorted.size()) + 1000000) {
      present_.resize(static_cast<std::size_t>(span));
      for (const std::int32_t label : sorted) {
        present_[static_cast<std::size_t>(label - sorted.front())] = true;
      }
    }
  }
  bool operator()(std::int32_t label) const {
    if (sorted_.empty() || label < sorted_.front() || label > sorted_.back()) return false;
    if (dense_) return true;
    if (!present_.empty()) return present_[static_cast<std::size_t>(label - sorted_.front())];
    return contains(sorted_, label);
  }

 private:
  const std::vector<std::int32_t>& sorted_;
  bool dense_ = false;
  std::vector<bool> present_;
};

}  // namespace

void DeckParser::finish() {
  finishStructure();
  for (Part& part : deck_.parts) finishMesh(part.content);
  for (Instance& instance : deck_.instances) finishMesh(instance.content);
  finishMesh(deck_.assembly);
  std::size_t nNodes = deck_.assembly.nodes.size();
  for (const Instance& instance : deck_.instances) nNodes += deck_.meshOf(instance).nodes.size();
  const bool analytic = std::any_of(deck_.parts.begin(), deck_.parts.end(), [](const Part& p) {
    return !p.content.analyticSurfaces.empty();
  });
  if (nNodes == 0 && !analytic) fail("the deck defines no nodes");

  const auto finishAllSets = [this](Scope& content, const Scope& home) {
    finishSets(content.nodeSets, home, false);
    finishSets(content.elementSets, home, true);
  };
  for (Part& part : deck_.parts) finishAllSets(part.content, part.content);
  for (Instance& instance : deck_.instances) {
    finishAllSets(instance.content, deck_.meshOf(instance));
  }
  finishAllSets(deck_.assembly, deck_.assembly);

  // What names sets looks them up from where it stands.
  for (std::size_t i = 0; i < deck_.parts.size(); ++i) {
    level_ = Level::part;
    part_ = static_cast<std::int32_t>(i);
    finishUses(deck_.parts[i].content, deck_.parts[i].content);
  }
  for (std::size_t i = 0; i < deck_.instances.size(); ++i) {
    level_ = Level::instance;
    instance_ = static_cast<std::int32_t>(i);
    finishUses(deck_.instances[i].content, deck_.meshOf(deck_.instances[i]));
  }
  level_ = Level::assembly;
  finishUses(deck_.assembly, deck_.assembly);
}

void DeckParser::finishUses(Scope& content, const Scope& home) {
  checkConnectivity(content);
  finishSurfaces(content, home);
  finishOrientations(content);
  finishSections(content, home);
  finishRigidBodies(content);
}

// Blocks must be closed; a flat deck gets its instance.
void DeckParser::finishStructure() {
  if (level_ == Level::part) fail("*PART without *END PART");
  if (level_ == Level::instance) fail("*INSTANCE without *END INSTANCE");
  if (deck_.flat) {
    scope();  // a deck without a node still has its part, for the message about that
    deck_.parts[static_cast<std::size_t>(flatPart_)].name = "PART-1";
    Instance only;
    only.name = "PART-1-1";
    only.part = static_cast<std::size_t>(flatPart_);
    deck_.instances.push_back(std::move(only));
  } else if (flatPart_ >= 0) {
    if (deck_.parts[static_cast<std::size_t>(flatPart_)].content.hasMesh()) {
      fail("there are nodes or elements outside of parts and assembly");
    }
  }
  if (deck_.instances.empty()) fail("the deck has parts but no *INSTANCE");
  for (const Instance& instance : deck_.instances) {
    if (instance.content.hasMesh() && deck_.parts[instance.part].content.hasMesh()) {
      lines_.fail(instance.place, "instance " + instance.name +
                                      " has nodes of its own, but its part has nodes too");
    }
  }
}

void DeckParser::finishMesh(Scope& content) {
  content.nodes.finish();
  const auto twice = content.elements.finish();
  if (twice) {
    lines_.fail((*twice)[1], "an element is defined a second time; the first is at " +
                                 lines_.where((*twice)[0]));
  }
  content.elements.blocks.erase(
      std::remove_if(content.elements.blocks.begin(), content.elements.blocks.end(),
                     [](const ElementBlock& b) { return b.labels.empty(); }),
      content.elements.blocks.end());
}

const Scope& DeckParser::homeOf(std::int32_t owner, const Scope& home) const {
  return owner == kOwn ? home : deck_.meshOf(deck_.instances[static_cast<std::size_t>(owner)]);
}

void DeckParser::checkConnectivity(const Scope& content) {
  const LabelCheck own(content.nodes.labels);
  for (const ElementBlock& block : content.elements.blocks) {
    for (std::size_t e = 0; e < block.labels.size(); ++e) {
      for (std::size_t i = block.offsets[e]; i < block.offsets[e + 1]; ++i) {
        const std::int32_t owner = block.owners.empty() ? kOwn : block.owners[i];
        const bool known = owner == kOwn
                               ? own(block.nodes[i])
                               : contains(homeOf(owner, content).nodes.labels, block.nodes[i]);
        if (known) continue;
        lines_.fail(block.places[e], "element " + std::to_string(block.labels[e]) +
                                         " has the node " + std::to_string(block.nodes[i]) +
                                         ", which is not defined");
      }
    }
  }
}

// All element labels of a mesh, ascending; made once per mesh.
const std::vector<std::int32_t>& DeckParser::sortedElements(const Scope& mesh) {
  const auto [at, isNew] = elementLabels_.emplace(&mesh, std::vector<std::int32_t>());
  std::vector<std::int32_t>& labels = at->second;
  if (!isNew) return labels;
  labels.reserve(mesh.elements.size());
  for (const ElementBlock& block : mesh.elements.blocks) {
    labels.insert(labels.end(), block.labels.begin(), block.labels.end());
  }
  std::sort(labels.begin(), labels.end());
  return labels;
}

// Ranges become the labels in them that exist.
void DeckParser::finishMembers(Members& members, const Scope& home, bool elements, bool unsorted) {
  const Scope& mesh = homeOf(members.owner, home);
  const std::vector<std::int32_t>& sorted = elements ? sortedElements(mesh) : mesh.nodes.labels;
  for (const Range& range : members.ranges) {
    const std::int64_t wanted = (std::int64_t{range.last} - range.first) / range.step + 1;
    const std::size_t before = members.labels.size();
    auto at = std::lower_bound(sorted.begin(), sorted.end(), range.first);
    const auto end = std::upper_bound(at, sorted.end(), range.last);
    if (range.step == 1) {
      members.labels.insert(members.labels.end(), at, end);
    } else {
      for (; at != end; ++at) {
        if ((*at - range.first) % range.step == 0) members.labels.push_back(*at);
        ++nResolved_;
      }
    }
    const auto found = static_cast<std::int64_t>(members.labels.size() - before);
    deck_.nUnknownMembers += wanted - found;
    nResolved_ += found;
    if (nResolved_ > kMaxMembers) fail("the sets of the deck have too many members");
  }
  members.ranges.clear();
  members.ranges.shrink_to_fit();
  if (unsorted) return;
  auto& labels = members.labels;
  if (!std::is_sorted(labels.begin(), labels.end())) std::sort(labels.begin(), labels.end());
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
}

void DeckParser::finishSets(SetTable& sets, const Scope& home, bool elements) {
  for (Set& set : sets.sets) {
    set.compact();
    for (Members& members : set.members) finishMembers(members, home, elements, set.unsorted);
  }
}

void DeckParser::finishSurfaces(Scope& content, const Scope& home) {
  for (Surface& surface : content.surfaces) {
    for (SurfaceItem& item : surface.items) {
      if (item.setName.empty()) {
        for (Members& members : item.members) {
          finishMembers(members, home, !surface.nodeBased, false);
        }
        continue;
      }
      const Reference reference{item.setOwner, 0, item.setName};
      const Set* set = findSet(reference, !surface.nodeBased);
      if (!set) {
        lines_.fail(item.place, "surface " + surface.name + " names the set " + item.setName +
                                    ", which is not defined");
      }
      item.members = set->members;
      for (Members& members : item.members) {
        if (members.owner == kOwn) members.owner = item.setOwner;
        nResolved_ += static_cast<std::int64_t>(members.labels.size());
      }
      if (nResolved_ > kMaxMembers) fail("the surfaces of the deck have too many members");
    }
  }
}

void DeckParser::checkMaterials(const Section& section) {
  const auto check = [&](const std::string& name) {
    const auto known = [&](const Material& m) { return m.name == name; };
    if (name.empty() || section.kind == SectionKind::other) return;
    if (std::none_of(deck_.materials.begin(), deck_.materials.end(), known)) {
      lines_.fail(section.place, "the section's material " + name + " is not defined");
    }
  };
  check(section.material);
  for (const Layer& layer : section.layers) check(layer.material);
}

void DeckParser::finishSections(Scope& content, const Scope& home) {
  // A solver without abbreviations passes over the keyword, and its deck may have no such set.
  const auto passedOver = [&](const Section& section) {
    if (!section.abbreviated || findSet({kOwn, 0, section.elset}, true)) return false;
    warn(section.place,
         "the section is left out: its element set " + section.elset + " is not defined");
    return true;
  };
  content.sections.erase(
      std::remove_if(content.sections.begin(), content.sections.end(), passedOver),
      content.sections.end());
  for (Section& section : content.sections) {
    const Set* set = findSet({kOwn, 0, section.elset}, true);
    if (!set) {
      if (section.kind == SectionKind::other) continue;
      lines_.fail(section.place, "the section's element set " + section.elset + " is not defined");
    }
    checkMaterials(section);
    if (section.kind != SectionKind::solid) continue;
    // One keyword serves continua, trusses and generalised plane strain: the elements tell.
    for (const Members& members : set->members) {
      if (members.labels.empty()) continue;
      for (const ElementBlock& block : homeOf(members.owner, home).elements.blocks) {
        if (!contains(block.labels, members.labels.front())) continue;
        if (startsWith(block.type, "T3D") || startsWith(block.type, "T2D")) {
          section.kind = SectionKind::truss;
          section.word = "truss";
        } else if (startsWith(block.type, "CPEG")) {
          section.kind = SectionKind::peg;
        }
      }
    }
  }
}

void DeckParser::finishRigidBodies(Scope& content) {
  for (RigidBody& body : content.rigidBodies) {
    const auto check = [&](const Reference& reference, bool elements) {
      if (!reference.given()) return;
      if (reference.label == 0) {
        if (!findSet(reference, elements)) {
          lines_.fail(body.place, "the rigid body names the set " + reference.setName +
                                      ", which is not defined");
        }
        return;
      }
      const Scope& mine = level_ == Level::instance && !content.hasMesh()
                              ? deck_.meshOf(deck_.instances[static_cast<std::size_t>(instance_)])
                              : content;
      if (!contains(homeOf(reference.owner, mine).nodes.labels, reference.label)) {
        lines_.fail(body.place, "the rigid body names the node " + std::to_string(reference.label) +
                                    ", which is not defined");
      }
    };
    check(body.referenceNode, false);
    check(body.elements, true);
    check(body.pinNodes, false);
    check(body.tieNodes, false);
  }
}

}  // namespace odbs::importer
