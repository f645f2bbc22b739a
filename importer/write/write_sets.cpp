// SPDX-License-Identifier: BSD-3-Clause
// Sets and surfaces.
#include <odb_embedded.h>

#include <algorithm>

#include "base/text.h"
#include "importer/write/model_writer.h"

namespace odbs::importer {

namespace {

// The face that a deck's identifier names on an element of that type; FACE_UNKNOWN when it names
// none.
odb_Enum::odb_ElementFaceEnum faceOf(const DeckElementType& type, const std::string& face) {
  using Face = odb_Enum::odb_ElementFaceEnum;
  if (face == "SPOS") return odb_Enum::SIDE1;
  if (face == "SNEG") return odb_Enum::SIDE2;
  const std::size_t letters = face.find_first_of("0123456789");
  const int number = toIntOrZero(face.substr(std::min(letters, face.size())));
  const std::string prefix = face.substr(0, letters);
  if (prefix == "END" && number >= 1 && number <= 3) return static_cast<Face>(number);
  if (prefix == "E" && number >= 1 && number <= 20) return static_cast<Face>(100 + number);
  if (prefix != "S" || number < 1 || number > 6) return odb_Enum::FACE_UNKNOWN;
  if (type.family == Family::shell) {
    // Numbered faces of shells: below, above, then the edges.
    if (number == 1) return odb_Enum::SIDE2;
    if (number == 2) return odb_Enum::SIDE1;
    return static_cast<Face>(100 + number - 2);
  }
  return static_cast<Face>(10 + number);
}

odb_String nameOfOwner(const Deck& deck, std::int32_t owner) {
  return owner == kOwn ? odb_String("")
                       : text(deck.instances[static_cast<std::size_t>(owner)].name);
}

// The corner nodes of an element's face, ascending; false when it has no such face.
bool faceNodes(const ElementBlock& block, std::size_t e, const DeckElementType& type, int face,
               FaceNodes& nodes) {
  int corners[4];
  const int n = faceCorners(type, face, corners);
  nodes.fill(0);
  for (int i = 0; i < n; ++i) {
    const std::size_t at = block.offsets[e] + static_cast<std::size_t>(corners[i]);
    nodes[static_cast<std::size_t>(i)] = block.nodes[at];
  }
  std::sort(nodes.begin(), nodes.end());
  return n > 0;
}

}  // namespace

// Faces of solids that no second element of the mesh has; both sides of shells and lines.
void ModelWriter::addFreeFaces(const Scope& mesh, const std::vector<std::int32_t>& elements,
                               odb_SequenceInt& labels, odb_SequenceElementFace& faces) {
  FaceNodes nodes;
  if (sharedFacesOf_ != &mesh) {
    sharedFacesOf_ = &mesh;
    sharedFaces_.clear();
    std::unordered_set<FaceNodes, FaceHash> once;
    for (const ElementBlock& block : mesh.elements.blocks) {
      const DeckElementType type = elementTypeOf(block.type);
      for (std::size_t e = 0; e < block.labels.size(); ++e) {
        for (int face = 1; face <= 6 && faceNodes(block, e, type, face, nodes); ++face) {
          if (!once.insert(nodes).second) sharedFaces_.insert(nodes);
        }
      }
    }
  }
  ElementFinder find(mesh);
  for (const std::int32_t label : elements) {
    const ElementTable::Position at = find(label);
    if (at.block < 0) continue;
    const ElementBlock& block = mesh.elements.blocks[static_cast<std::size_t>(at.block)];
    const DeckElementType type = elementTypeOf(block.type);
    if (type.family == Family::shell || type.family == Family::line) {
      labels.append(label);
      faces.append(odb_Enum::DOUBLE_SIDED);
      continue;
    }
    for (int face = 1; face <= 6 && faceNodes(block, at.index, type, face, nodes); ++face) {
      if (sharedFaces_.count(nodes) > 0) continue;
      labels.append(label);
      faces.append(static_cast<odb_Enum::odb_ElementFaceEnum>(10 + face));
    }
  }
}

void ModelWriter::addFaces(const Scope& mesh, const SurfaceItem& item, const Members& members,
                           odb_SequenceInt& labels, odb_SequenceElementFace& faces) {
  if (item.face.empty()) return addFreeFaces(mesh, members.labels, labels, faces);
  ElementFinder find(mesh);
  std::int32_t block = -1;
  odb_Enum::odb_ElementFaceEnum face = odb_Enum::FACE_UNKNOWN;
  for (const std::int32_t label : members.labels) {
    const ElementTable::Position at = find(label);
    if (at.block < 0) continue;
    if (at.block != block) {
      block = at.block;
      face = faceOf(elementTypeOf(mesh.elements.blocks[static_cast<std::size_t>(block)].type),
                    item.face);
    }
    labels.append(label);
    faces.append(face);
  }
}

void ModelWriter::writeSets(odb_DiscreteEntity& entity, const Scope& content) {
  const auto write = [&](const SetTable& sets, bool elements) {
    for (const Set& set : sets.sets) {
      if ((elements ? entity.elementSets() : entity.nodeSets()).isMember(text(set.name))) {
        warn("set " + set.name + " of an instance is left out: its part has one of that name");
        continue;
      }
      std::vector<std::int32_t> labels;
      for (const Members& members : set.members) {
        labels.insert(labels.end(), members.labels.begin(), members.labels.end());
      }
      if (elements) {
        entity.ElementSet(text(set.name), sequence(labels));
      } else {
        entity.NodeSet(text(set.name), sequence(labels));
      }
      ++summary_.nSets;
    }
  };
  write(content.nodeSets, false);
  write(content.elementSets, true);
}

void ModelWriter::writeSurfaces(odb_DiscreteEntity& entity, const Scope& content,
                                const Scope& mesh) {
  for (const Surface& surface : content.surfaces) {
    if (entity.surfaces().isMember(text(surface.name))) {
      warn("surface " + surface.name +
           " of an instance is left out: its part has one of that name");
      continue;
    }
    odb_SequenceInt labels;
    odb_SequenceElementFace faces;
    std::vector<std::int32_t> nodes;
    for (const SurfaceItem& item : surface.items) {
      for (const Members& members : item.members) {
        if (surface.nodeBased) {
          nodes.insert(nodes.end(), members.labels.begin(), members.labels.end());
        } else {
          addFaces(mesh, item, members, labels, faces);
        }
      }
    }
    if (surface.nodeBased) {
      odb_embedded::addNodeSurface(entity, text(surface.name), sequence(nodes));
    } else {
      entity.Surface(text(surface.name), labels, faces);
    }
    ++summary_.nSurfaces;
  }
}

void ModelWriter::writeAssemblySets() {
  odb_Assembly& assembly = odb_.rootAssembly();
  const auto write = [&](const SetTable& sets, bool elements) {
    for (const Set& set : sets.sets) {
      odb_SequenceString owners;
      odb_SequenceSequenceInt labels;
      for (const Members& members : set.members) {
        if (members.labels.empty() && set.members.size() > 1) continue;
        owners.append(nameOfOwner(deck_, members.owner));
        labels.append(sequence(members.labels));
      }
      if (elements) {
        assembly.ElementSet(text(set.name), owners, labels);
      } else {
        assembly.NodeSet(text(set.name), owners, labels);
      }
      ++summary_.nSets;
    }
  };
  write(deck_.assembly.nodeSets, false);
  write(deck_.assembly.elementSets, true);
}

void ModelWriter::writeAssemblySurfaces() {
  odb_Assembly& assembly = odb_.rootAssembly();
  for (const Surface& surface : deck_.assembly.surfaces) {
    struct Piece {
      odb_SequenceInt labels;
      odb_SequenceElementFace faces;
    };
    std::map<std::int32_t, Piece> pieces;
    for (const SurfaceItem& item : surface.items) {
      for (const Members& members : item.members) {
        Piece& piece = pieces[members.owner];
        if (surface.nodeBased) {
          for (const std::int32_t label : members.labels) piece.labels.append(label);
          continue;
        }
        const Scope& mesh =
            members.owner == kOwn
                ? deck_.assembly
                : deck_.meshOf(deck_.instances[static_cast<std::size_t>(members.owner)]);
        addFaces(mesh, item, members, piece.labels, piece.faces);
      }
    }
    odb_SequenceString owners;
    odb_SequenceSequenceInt labels;
    odb_SequenceSequenceElementFace faces;
    for (const auto& [owner, piece] : pieces) {
      owners.append(nameOfOwner(deck_, owner));
      labels.append(piece.labels);
      faces.append(piece.faces);
    }
    if (surface.nodeBased) {
      odb_embedded::addNodeSurface(assembly, text(surface.name), owners, labels);
    } else {
      assembly.Surface(text(surface.name), owners, labels, faces);
    }
    ++summary_.nSurfaces;
  }
}

}  // namespace odbs::importer
