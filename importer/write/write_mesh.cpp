// SPDX-License-Identifier: BSD-3-Clause
// Nodes and elements. Elements go out in groups of one type, one section category and one number
// of nodes, each with ascending labels.
#include <odb_embedded.h>

#include <algorithm>
#include <tuple>

#include "importer/write/model_writer.h"

namespace odbs::importer {

ElementTable::Position ElementFinder::operator()(std::int32_t label) {
  const auto& blocks = mesh_->elements.blocks;
  // Sets follow the mesh: the next element of the same block is the usual answer.
  if (block_ < blocks.size() && at_ + 1 < blocks[block_].labels.size() &&
      blocks[block_].labels[at_ + 1] == label) {
    ++at_;
    return {static_cast<std::int32_t>(block_), static_cast<std::uint32_t>(at_)};
  }
  for (std::size_t tried = 0; tried < blocks.size(); ++tried) {
    const std::size_t b = (block_ + tried) % blocks.size();
    const auto& labels = blocks[b].labels;
    const auto found = std::lower_bound(labels.begin(), labels.end(), label);
    if (found == labels.end() || *found != label) continue;
    block_ = b;
    at_ = static_cast<std::size_t>(found - labels.begin());
    return {static_cast<std::int32_t>(b), static_cast<std::uint32_t>(at_)};
  }
  return {};
}

void ModelWriter::writeNodes(odb_DiscreteEntity& entity, const DeckNodeTable& nodes) {
  if (nodes.size() == 0) return;
  const std::vector<float> coordinates(nodes.xyz.begin(), nodes.xyz.end());
  odb_embedded::addNodes(entity, static_cast<int>(nodes.size()), nodes.labels.data(),
                         coordinates.data());
}

// The category of each element: that of the last section whose set holds it.
ModelWriter::Categories ModelWriter::categoriesOf(const Scope& content) const {
  Categories categories;
  for (const ElementBlock& block : content.elements.blocks) {
    categories.emplace_back(block.labels.size(), -1);
  }
  ElementFinder find(content);
  for (const Section& section : content.sections) {
    const Set* set = content.elementSets.find(section.elset);
    const auto category = categoryOf_.find(&section);
    if (!set || category == categoryOf_.end()) continue;
    for (const Members& members : set->members) {
      if (members.owner != kOwn) continue;
      for (const std::int32_t label : members.labels) {
        const ElementTable::Position at = find(label);
        if (at.block >= 0)
          categories[static_cast<std::size_t>(at.block)][at.index] = category->second;
      }
    }
  }
  return categories;
}

void ModelWriter::writeElements(odb_DiscreteEntity& entity, const Scope& content) {
  const Categories categories = categoriesOf(content);
  for (std::size_t b = 0; b < content.elements.blocks.size(); ++b) {
    const ElementBlock& block = content.elements.blocks[b];
    struct Group {
      std::vector<std::int32_t> labels, nodes;
    };
    std::map<std::pair<std::int32_t, std::uint32_t>, Group> groups;
    Group* last = nullptr;
    std::pair<std::int32_t, std::uint32_t> lastKey;
    for (std::size_t e = 0; e < block.labels.size(); ++e) {
      const std::uint32_t first = block.offsets[e], n = block.offsets[e + 1] - first;
      const std::pair<std::int32_t, std::uint32_t> key(categories[b][e], n);
      if (!last || key != lastKey) {
        last = &groups[key];
        lastKey = key;
      }
      last->labels.push_back(block.labels[e]);
      last->nodes.insert(last->nodes.end(), block.nodes.begin() + first,
                         block.nodes.begin() + first + n);
    }
    for (const auto& [key, group] : groups) {
      odb_SectionCategory category;
      if (key.first >= 0) {
        const std::string& name = categories_[static_cast<std::size_t>(key.first)];
        category = odb_.sectionCategories()[text(name)];
      }
      odb_embedded::addElements(entity, static_cast<int>(group.labels.size()), group.labels.data(),
                                static_cast<int>(key.second), group.nodes.data(), text(block.type),
                                category);
    }
  }
}

// Elements of the assembly join nodes of instances: those that join the same instances in the same
// order go together.
void ModelWriter::writeAssemblyElements() {
  const Scope& content = deck_.assembly;
  const Categories categories = categoriesOf(content);
  for (std::size_t b = 0; b < content.elements.blocks.size(); ++b) {
    const ElementBlock& block = content.elements.blocks[b];
    std::map<std::pair<std::int32_t, std::vector<std::int32_t>>, std::vector<std::size_t>> groups;
    for (std::size_t e = 0; e < block.labels.size(); ++e) {
      const auto first = block.owners.begin() + block.offsets[e];
      const auto last = block.owners.begin() + block.offsets[e + 1];
      groups[{categories[b][e], std::vector<std::int32_t>(first, last)}].push_back(e);
    }
    for (const auto& [key, elements] : groups) {
      odb_SequenceInt labels;
      odb_SequenceSequenceInt connectivity;
      odb_SequenceString owners;
      for (const std::int32_t owner : key.second) {
        owners.append(owner == kOwn ? odb_String("")
                                    : text(deck_.instances[static_cast<std::size_t>(owner)].name));
      }
      for (const std::size_t e : elements) {
        labels.append(block.labels[e]);
        odb_SequenceInt nodes;
        for (std::size_t i = block.offsets[e]; i < block.offsets[e + 1]; ++i) {
          nodes.append(block.nodes[i]);
        }
        connectivity.append(nodes);
      }
      odb_SectionCategory category;
      if (key.first >= 0) {
        category = odb_.sectionCategories()[text(categories_[static_cast<std::size_t>(key.first)])];
      }
      odb_.rootAssembly().addElements(labels, connectivity, owners, text(block.type), "", category);
    }
  }
  summary_.nNodes += static_cast<std::int64_t>(content.nodes.size());
  summary_.nElements += static_cast<std::int64_t>(content.elements.size());
}

}  // namespace odbs::importer
