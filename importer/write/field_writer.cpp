// SPDX-License-Identifier: BSD-3-Clause
// Fields of a result file, frame by frame.
#include "importer/write/field_writer.h"

#include <algorithm>
#include <cstdlib>
#include <set>

#include "importer/deck/element_types.h"

namespace odbs::importer {

odb_SequenceInvariant invariantsOf(FieldShape shape) {
  odb_SequenceInvariant invariants;
  if (shape == FieldShape::vector) invariants.append(odb_Enum::MAGNITUDE);
  if (shape == FieldShape::scalar || shape == FieldShape::vector) return invariants;
  for (const auto invariant :
       {odb_Enum::MISES, odb_Enum::TRESCA, odb_Enum::PRESS, odb_Enum::INV3, odb_Enum::MAX_PRINCIPAL,
        odb_Enum::MID_PRINCIPAL, odb_Enum::MIN_PRINCIPAL}) {
    invariants.append(invariant);
  }
  return invariants;
}

odb_Enum::odb_DataTypeEnum typeOf(FieldShape shape) {
  switch (shape) {
    case FieldShape::vector:
      return odb_Enum::VECTOR;
    case FieldShape::tensor:
    case FieldShape::strain:
      return odb_Enum::TENSOR_3D_FULL;
    default:
      return odb_Enum::SCALAR;
  }
}

odb_FieldOutput& fieldOf(odb_Frame& frame, const std::string& name, const std::string& description,
                         FieldShape shape) {
  odb_FieldOutputRepository& fields = frame.fieldOutputs();
  if (fields.isMember(name.c_str())) return fields[name.c_str()];
  return frame.FieldOutput(name.c_str(), description.c_str(), typeOf(shape), odb_SequenceString(),
                           invariantsOf(shape), shape == FieldShape::strain);
}

void toStored(FieldShape shape, float* components, std::size_t n) {
  if (shape != FieldShape::strain) return;
  for (std::size_t i = 0; i < n; ++i) {
    if (i % 6 >= 3) components[i] *= 2;
  }
}

LayerPoints layerPoints(const odb_SectionCategory& category, int layer) {
  constexpr const char kLayer[] = "Layer = ";
  LayerPoints points;
  const odb_SequenceSectionPoint& all = category.sectionPoints();
  for (int i = 0; i < all.size(); ++i) {
    const std::string text = all[i].description().CStr();
    const std::size_t at = text.find(kLayer);
    const int found =
        at == std::string::npos ? 1 : std::atoi(text.c_str() + at + sizeof kLayer - 1);
    if (found != layer + 1) continue;
    if (points.bottom.number() < 0) points.bottom = all[i];
    points.top = all[i];
  }
  return points;
}

odb_SectionPoint cornerPoint(const odb_SectionCategory& category, int corner) {
  const odb_SequenceSectionPoint& all = category.sectionPoints();
  return all.size() == kCorners ? all[corner] : odb_SectionPoint();
}

FieldWriter::Block FieldWriter::read(const FrdField& field) {
  Block block;
  reader_.readAt(field.place);
  block.result = std::move(reader_.result());
  block.rowOf.assign(index_.nodes.labels.size(), -1);
  for (std::size_t row = 0; row < block.result.labels.size(); ++row) {
    // Mostly the block lists the nodes in the order of the mesh.
    const std::int32_t label = block.result.labels[row];
    const bool sameOrder = row < index_.nodes.labels.size() && index_.nodes.labels[row] == label;
    const std::int32_t node =
        sameOrder ? static_cast<std::int32_t>(row) : targets_[0].mesh->indexOf(label);
    if (node >= 0) block.rowOf[static_cast<std::size_t>(node)] = static_cast<std::int32_t>(row);
  }
  return block;
}

std::size_t FieldWriter::write(const FrdFrame& frame, odb_Frame& target, bool sectionForces) {
  std::size_t nWritten = 0;
  const auto find = [&](const std::string& name) {
    return std::find_if(frame.fields.begin(), frame.fields.end(),
                        [&](const FrdField& field) { return field.head.name == name; });
  };
  std::set<std::string> imaginaries;
  for (const FrdField& field : frame.fields) {
    const auto partner = find(imaginaryName(field.head.name));
    if (partner != frame.fields.end() && partner->head.nStored == field.head.nStored) {
      imaginaries.insert(partner->head.name);
    }
  }
  std::set<std::string> taken;
  for (const FrdField& field : frame.fields) {
    const std::string& name = field.head.name;
    if (imaginaries.count(name) != 0) continue;
    // Magnitude and phase say what real and imaginary part say.
    if (isRedundant(name) && find(name.substr(1)) != frame.fields.end()) continue;
    Block real = read(field);
    Block imaginary;
    const bool isComplex = imaginaries.count(imaginaryName(name)) != 0;
    if (isComplex) imaginary = read(*find(imaginaryName(name)));
    bool written = false;
    for (TargetField& targetField : targetFields(field.head, sectionForces)) {
      const std::string plain = targetField.name;
      for (int n = 2; !taken.insert(targetField.name).second; ++n) {
        targetField.name = plain + "_" + std::to_string(n);
      }
      if (writeField(target, targetField, real, isComplex ? &imaginary : nullptr)) {
        ++nWritten;
        written = true;
      } else if (targetField.elements == FieldElements::all) {
        ++leftOut_[name];
        written = true;
      }
    }
    if (!written) ++leftOut_[name];
  }
  return nWritten;
}

// Rows of values on their way into a field, some thousand at a time: a block of the database can
// be several times as large as the one that it comes from.
class FieldWriter::Rows {
 public:
  Rows(odb_Frame& frame, const TargetField& field, const odb_Instance& instance,
       odb_Enum::odb_ResultPositionEnum position, bool isComplex)
      : frame_(frame), field_(field), complex_(isComplex) {
    added_.instance = instance;
    added_.position = position;
    added_.width = static_cast<int>(field.sources.size());
  }

  std::vector<float> values, conjugate;  // of the elements or nodes since the last flush
  odb_SectionPoint sectionPoint;

  // How many rows there will be.
  void expect(std::size_t nRows) { added_.nRowsInAll = static_cast<int>(nRows); }
  // The values of `label` are complete.
  void accept(std::int32_t label) {
    labels_.push_back(label);
    if (values.size() >= kMost) flush();
  }
  // Writes the rest. Returns true when anything was accepted at all.
  bool finish() {
    flush();
    return any_;
  }

 private:
  void flush() {
    if (labels_.empty()) return;
    added_.labels = labels_.data();
    added_.nLabels = static_cast<int>(labels_.size());
    toStored(field_.shape, values.data(), values.size());
    toStored(field_.shape, conjugate.data(), conjugate.size());
    added_.data = values.data();
    added_.conjugate = complex_ ? conjugate.data() : nullptr;
    added_.nRows = static_cast<int>(values.size()) / added_.width;
    added_.sectionPoint = sectionPoint;
    odb_embedded::addData(fieldOf(frame_, field_.name, field_.description, field_.shape), added_);
    any_ = true;
    labels_.clear();
    values.clear();
    conjugate.clear();
  }

  static constexpr std::size_t kMost = 1 << 18;
  odb_Frame& frame_;
  const TargetField& field_;
  bool complex_ = false, any_ = false;
  odb_embedded::FieldValues<float> added_;
  std::vector<int> labels_;
};

bool FieldWriter::writeField(odb_Frame& frame, const TargetField& field, const Block& real,
                             const Block* imaginary) {
  bool any = false;
  for (const Target& target : targets_) {
    any |= field.ofElements ? writeOfElements(target, frame, field, real, imaginary)
                            : writeNodal(target, frame, field, real, imaginary);
  }
  return any;
}

bool FieldWriter::has(const NodeSources& sources, std::size_t target, std::size_t n,
                      const Block& block) {
  const std::size_t first = sources.begin(target), last = sources.end(target + n - 1);
  for (std::size_t i = first; i < last; ++i) {
    if (block.rowOf[static_cast<std::size_t>(sources.nodes[i])] < 0) return false;
  }
  for (std::size_t i = target; i < target + n; ++i) {
    if (sources.begin(i) == sources.end(i)) return false;
  }
  return true;
}

void FieldWriter::gather(const NodeSources& sources, std::size_t target, const TargetField& field,
                         const Block& block, std::vector<float>& values) {
  const std::size_t first = sources.begin(target), last = sources.end(target);
  const std::size_t nStored = static_cast<std::size_t>(block.result.nStored);
  for (const int component : field.sources) {
    double value = 0;
    for (std::size_t i = first; i < last; ++i) {
      const auto row =
          static_cast<std::size_t>(block.rowOf[static_cast<std::size_t>(sources.nodes[i])]);
      const double share = sources.weights.empty() ? 1 : static_cast<double>(sources.weights[i]);
      value += share * block.result.values[row * nStored + static_cast<std::size_t>(component)];
    }
    values.push_back(static_cast<float>(value));
  }
}

template <class Finish>
bool FieldWriter::writeRows(Rows& rows, const TargetField& field, const NodeSources& sources,
                            const std::vector<std::int32_t>& labels, std::size_t nEach,
                            const Block& real, const Block* imaginary, Finish finish) {
  const auto complete = [&](std::size_t i) {
    return has(sources, i * nEach, nEach, real) &&
           (imaginary == nullptr || has(sources, i * nEach, nEach, *imaginary));
  };
  std::size_t nComplete = 0;
  for (std::size_t i = 0; i < labels.size(); ++i) nComplete += complete(i) ? 1 : 0;
  rows.expect(nComplete * nEach);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (!complete(i)) continue;
    for (std::size_t row = i * nEach; row < (i + 1) * nEach; ++row) {
      gather(sources, row, field, real, rows.values);
      finish(rows.values, row);
      if (imaginary == nullptr) continue;
      gather(sources, row, field, *imaginary, rows.conjugate);
      finish(rows.conjugate, row);
    }
    rows.accept(labels[i]);
  }
  return rows.finish();
}

bool FieldWriter::writeNodal(const Target& target, odb_Frame& frame, const TargetField& field,
                             const Block& real, const Block* imaginary) {
  const NodeSources& sources = field.addsUp ? target.mesh->sums() : target.mesh->means();
  Rows rows(frame, field, target.instance, odb_Enum::NODAL, imaginary != nullptr);
  const auto asTheyAre = [](std::vector<float>&, std::size_t) {};
  return writeRows(rows, field, sources, target.mesh->nodeLabels(), 1, real, imaginary, asTheyAre);
}

bool FieldWriter::writeOfElements(const Target& target, odb_Frame& frame, const TargetField& field,
                                  const Block& real, const Block* imaginary) {
  bool any = false;
  for (const ElementTargets& targets : target.mesh->elements()) {
    const bool line = elementTypeOf(targets.type).family == Family::line;
    if (field.elements == (line ? FieldElements::others : FieldElements::lines)) continue;
    Rows rows(frame, field, target.instance, odb_Enum::ELEMENT_NODAL, imaginary != nullptr);
    if (targets.side == Side::corner) {
      const odb_Element element = target.instance.getElementFromLabel(targets.labels[0]);
      rows.sectionPoint = cornerPoint(element.sectionCategory(), targets.layer);
    } else if (targets.side != Side::whole) {
      const odb_Element element = target.instance.getElementFromLabel(targets.labels[0]);
      const LayerPoints points = layerPoints(element.sectionCategory(), targets.layer);
      rows.sectionPoint = targets.side == Side::bottom ? points.bottom : points.top;
    }
    if (targets.side != Side::whole && rows.sectionPoint.number() < 0) continue;
    const auto turnLast = [&](std::vector<float>& values, std::size_t row) {
      if (targets.axes.empty()) return;
      turn(field.shape, targets.axes[row], values.data() + values.size() - field.sources.size());
    };
    any |= writeRows(rows, field, targets.sources, targets.labels, targets.nNodes, real, imaginary,
                     turnLast);
  }
  return any;
}

}  // namespace odbs::importer
