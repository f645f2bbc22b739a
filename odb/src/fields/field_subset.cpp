// SPDX-License-Identifier: BSD-3-Clause
// Subsets of fields: whole blocks where they fit, selected values otherwise.
#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace odbs::engine {

namespace {

enum class Choice { kNone, kSome, kAll };
// Says which values of a block to take; fills the list for kSome.
using Chooser = std::function<Choice(FieldBlock&, std::vector<int>&)>;

odb_FieldOutput filtered(const odb_FieldOutput& field, const Chooser& chooser) {
  const FieldData& source = *fieldOf(field);
  Field result = derivedField(source);
  field.bulkDataBlocks();  // completes the blocks of a field that is being written
  for (const Block& block : source.blocks) {
    std::vector<int> indices;
    Choice choice = chooser(*block, indices);
    if (choice == Choice::kSome && indices.empty()) choice = Choice::kNone;
    if (choice == Choice::kSome && static_cast<int>(indices.size()) == block->layout->nValues) {
      choice = Choice::kAll;
    }
    if (choice == Choice::kAll) result->blocks.push_back(block);
    if (choice == Choice::kSome) {
      result->blocks.push_back(selectedValues(block, std::move(indices)));
    }
  }
  return handleOf(result);
}

Choice wholeIf(bool fits) {
  return fits ? Choice::kAll : Choice::kNone;
}

template <class Real>
void gather(FieldBlock& source, FieldBlock& out, const std::vector<int>& indices, Part part) {
  if (!hasPart(out, part)) return;
  const auto width = static_cast<std::size_t>(partWidth(source, part));
  Buffer<Real> numbers(indices.size() * width);
  std::vector<double> values;
  for (std::size_t i = 0; i < indices.size();) {
    std::size_t end = i + 1;
    while (end < indices.size() && end - i < 65536 && indices[end] == indices[end - 1] + 1) ++end;
    values.resize((end - i) * width);
    readValues(source, part, indices[i], static_cast<int>(end - i), values.data());
    std::transform(values.begin(), values.end(),
                   numbers.begin() + static_cast<std::ptrdiff_t>(i * width),
                   [](double v) { return static_cast<Real>(v); });
    i = end;
  }
  BlockArrays<Real>& arrays = out.arrays<Real>();
  StoredArray<Real>& array = part == Part::kData        ? arrays.data
                             : part == Part::kConjugate ? arrays.conjugate
                                                        : arrays.orientation;
  array.edit(out.database->storage).swap(numbers);
}

template <class Real>
void gatherAll(FieldBlock& source, FieldBlock& out, const std::vector<int>& indices) {
  // Many small reads cost more than one large one.
  if (indices.size() > 4096) blockArray<Real>(source, Part::kData);
  for (Part part : {Part::kData, Part::kConjugate, Part::kOrientation}) {
    gather<Real>(source, out, indices, part);
  }
}

Ints selectedInts(const int* values, const std::vector<int>& indices) {
  if (!values) return nullptr;
  std::vector<int> selected;
  selected.reserve(indices.size());
  for (int i : indices) selected.push_back(values[i]);
  return makeInts(selected);
}

// Labels, and for surfaces the faces of elements.
class Members {
 public:
  void add(int label) { labels_.push_back(label); }
  void add(int label, int face) { faces_.emplace_back(label, face); }
  void finish() {
    std::sort(labels_.begin(), labels_.end());
    std::sort(faces_.begin(), faces_.end());
    if (labels_.empty()) return;
    const long long range = static_cast<long long>(labels_.back()) - labels_.front() + 1;
    if (range > kMostBits) return;
    bits_.resize(static_cast<std::size_t>(range));
    for (int label : labels_) bits_[place(label)] = true;
  }
  bool has(int label) const {
    if (labels_.empty() || label < labels_.front() || label > labels_.back()) return false;
    if (!bits_.empty()) return bits_[place(label)];
    return std::binary_search(labels_.begin(), labels_.end(), label);
  }
  bool has(int label, int face) const {
    return std::binary_search(faces_.begin(), faces_.end(), std::make_pair(label, face));
  }

 private:
  static constexpr long long kMostBits = 1LL << 28;
  std::size_t place(int label) const {
    return static_cast<std::size_t>(static_cast<long long>(label) - labels_.front());
  }
  std::vector<int> labels_;
  std::vector<std::pair<int, int>> faces_;
  std::vector<bool> bits_;
};

// By instance: nodes, elements.
struct SetMembers {
  std::map<const EntityData*, Members> nodes, elements;
};

// The nodes of an element, by the entity that has them.
void addNodesOf(const odb_Element& element, SetMembers& members) {
  int n = 0;
  const int* labels = element.connectivity(n);
  const ElementTable& table = *element.engineTable();
  for (int i = 0; i < n; ++i) {
    const EntityData* owner = table.owner;
    if (table.connectivityInstance) {
      const int row = table.connectivityInstance[labels - table.connectivity + i];
      owner = &table.owner->model->entities[static_cast<std::size_t>(row)];
    }
    members.nodes[owner].add(labels[i]);
  }
}

bool hasNodalValues(const FieldData& field) {
  return std::any_of(field.blocks.begin(), field.blocks.end(),
                     [](const Block& block) { return block->layout->position == odb_Enum::NODAL; });
}

SetMembers membersOf(const odb_Set& set, bool nodal) {
  SetMembers members;
  const odb_SequenceNode& nodes = set.nodes();
  const odb_SequenceElement& elements = set.elements();
  const odb_SequenceElementFace& faces = set.faces();
  for (int i = 0, n = nodes.size(); i < n; ++i) {
    const odb_Node node = nodes[i];
    members.nodes[node.engineTable()->owner].add(node.label());
  }
  const bool hasFaces = faces.size() == elements.size();
  for (int i = 0, n = elements.size(); i < n; ++i) {
    const odb_Element element = elements[i];
    Members& list = members.elements[element.engineTable()->owner];
    list.add(element.label());
    if (nodal && set.type() == odb_Enum::ELEMENT_SET) addNodesOf(element, members);
    if (hasFaces) list.add(element.label(), faces[i]);
  }
  for (auto* part : {&members.nodes, &members.elements}) {
    for (auto& [entity, list] : *part) list.finish();
  }
  return members;
}

template <class Test>
Choice chooseBy(const FieldBlock& block, std::vector<int>& indices, Test test) {
  for (int i = 0; i < block.layout->nValues; ++i) {
    if (test(i)) indices.push_back(i);
  }
  return Choice::kSome;
}

Choice chooseMembers(const SetMembers& set, odb_Enum::odb_SetTypeEnum type, FieldBlock& block,
                     std::vector<int>& indices) {
  BlockLayout& layout = *block.layout;
  const EntityData* entity = &layout.entity();
  const auto nodes = set.nodes.find(entity);
  const auto elements = set.elements.find(entity);
  if (elements != set.elements.end() && layout.elementLabels) {
    const int* labels = elementLabels(layout);
    const int* faces = faceNumbers(layout);
    const Members& list = elements->second;
    if (type == odb_Enum::SURFACE_SET && faces) {
      return chooseBy(block, indices, [&](int i) { return list.has(labels[i], faces[i]); });
    }
    return chooseBy(block, indices, [&](int i) { return list.has(labels[i]); });
  }
  const int* labels = nodes == set.nodes.end() ? nullptr : nodeLabels(layout);
  if (!labels) return Choice::kNone;
  return chooseBy(block, indices, [&](int i) { return nodes->second.has(labels[i]); });
}

// A block of the same elements at the same section point.
bool covers(const FieldBlock& a, const FieldBlock& b) {
  const BlockLayout &l = *a.layout, &m = *b.layout;
  return l.entityRow == m.entityRow && l.elementType == m.elementType && l.category == m.category &&
         l.point == m.point;
}

}  // namespace

Block sameLayout(const FieldBlock& source, std::shared_ptr<const FieldDescriptor> descriptor,
                 odb_Enum::odb_DataTypeEnum type, int width) {
  Block block = std::make_shared<FieldBlock>();
  block->database = source.database;
  block->frame = source.frame;
  block->derived = true;
  block->layout = source.layout;
  block->descriptor = std::move(descriptor);
  block->type = type;
  block->precision = source.precision;
  block->width = width;
  return block;
}

Block selectedValues(const Block& source, std::vector<int> indices) {
  BlockLayout& from = *source->layout;
  Block block = sameLayout(*source, source->descriptor, source->type, source->width);
  auto layout = std::make_shared<BlockLayout>();
  layout->database = from.database;
  layout->entityRow = from.entityRow;
  layout->position = from.position;
  layout->elementType = from.elementType;
  layout->category = from.category;
  layout->point = from.point;
  layout->nValues = static_cast<int>(indices.size());
  layout->interned = true;
  layout->elementLabels = selectedInts(elementLabels(from), indices);
  layout->nodeLabels = selectedInts(nodeLabels(from), indices);
  layout->points = selectedInts(integrationPoints(from), indices);
  layout->faces = selectedInts(faceNumbers(from), indices);
  countLabels(*layout);
  block->layout = std::move(layout);
  block->complex = source->complex;
  block->oriented = source->oriented;
  block->compute = [source, list = std::move(indices)](FieldBlock& out) {
    if (out.precision == odb_Enum::DOUBLE_PRECISION) {
      gatherAll<double>(*source, out, list);
    } else {
      gatherAll<float>(*source, out, list);
    }
  };
  return block;
}

}  // namespace odbs::engine

using namespace odbs::engine;

odb_FieldOutput odb_FieldOutput::getSubset(odb_Enum::odb_ResultPositionEnum position, bool) const {
  const FieldData& source = need();
  bulkDataBlocks();
  Field result = derivedField(source);
  for (const Block& block : source.blocks) {
    if (block->layout->position == position) result->blocks.push_back(block);
  }
  const bool centroid = position == odb_Enum::CENTROID;
  if (!centroid && position != odb_Enum::ELEMENT_NODAL) return handleOf(result);
  const std::vector<Block> stored = result->blocks;
  for (const Block& block : source.blocks) {
    if (block->layout->position != odb_Enum::INTEGRATION_POINT) continue;
    const bool known = std::any_of(stored.begin(), stored.end(),
                                   [&](const Block& other) { return covers(*other, *block); });
    if (!known) result->blocks.push_back(extrapolatedBlock(block, centroid));
  }
  return handleOf(result);
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_Set& set) const {
  const SetMembers members = membersOf(set, hasNodalValues(need()));
  const odb_Enum::odb_SetTypeEnum type = set.type();
  return filtered(*this, [&](FieldBlock& block, std::vector<int>& indices) {
    return chooseMembers(members, type, block, indices);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_Instance& instance) const {
  const EntityData* wanted = instance.engineData();
  return filtered(*this, [&](FieldBlock& block, std::vector<int>&) {
    return wholeIf(&block.layout->entity() == wanted);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_SectionPoint& point) const {
  return filtered(*this, [&](FieldBlock& block, std::vector<int>&) {
    return wholeIf(block.layout->sectionPoint() == point);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_FieldLocation& location) const {
  const odb_SequenceSectionPoint& points = location.sectionPoint();
  return filtered(*this, [&](FieldBlock& block, std::vector<int>&) {
    return wholeIf(block.layout->position == location.position() &&
                   (points.size() == 0 ? block.layout->category < 0
                                       : points.isMember(block.layout->sectionPoint())));
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_Element& element) const {
  SetMembers members;
  Members& list = members.elements[element.engineTable()->owner];
  list.add(element.label());
  list.finish();
  if (hasNodalValues(need())) addNodesOf(element, members);
  for (auto& [entity, nodes] : members.nodes) nodes.finish();
  return filtered(*this, [&](FieldBlock& block, std::vector<int>& indices) {
    return chooseMembers(members, odb_Enum::ELEMENT_SET, block, indices);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_Node& node) const {
  SetMembers members;
  Members& list = members.nodes[node.engineTable()->owner];
  list.add(node.label());
  list.finish();
  return filtered(*this, [&](FieldBlock& block, std::vector<int>& indices) {
    return chooseMembers(members, odb_Enum::NODE_SET, block, indices);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const odb_String& elementType) const {
  return filtered(*this, [&](FieldBlock& block, std::vector<int>&) {
    return wholeIf(block.layout->elementType == elementType);
  });
}

odb_FieldOutput odb_FieldOutput::getSubset(const char* elementType) const {
  return getSubset(odb_String(elementType));
}

odb_FieldOutput odb_FieldOutput::getSubset(
    const odb_SequenceSequenceFloat& localCoordSystem) const {
  const std::array<double, 4> wanted = quaternionOfRows(localCoordSystem);
  return filtered(*this, [&](FieldBlock& block, std::vector<int>& indices) {
    if (!block.oriented) return Choice::kNone;
    const int n = block.layout->nValues;
    std::vector<double> all(4 * static_cast<std::size_t>(n));
    readValues(block, Part::kOrientation, 0, n, all.data());
    return chooseBy(block, indices, [&](int i) {
      const double* q = &all[4 * static_cast<std::size_t>(i)];
      double dot = 0, square = 0;
      for (std::size_t k = 0; k < 4; ++k) {
        dot += q[k] * wanted[k];
        square += q[k] * q[k];
      }
      // A quaternion and its negative are the same rotation; a millionth is single precision.
      return std::fabs(dot) > (1 - 1e-6) * std::sqrt(square);
    });
  });
}
