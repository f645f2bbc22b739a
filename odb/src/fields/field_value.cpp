// SPDX-License-Identifier: BSD-3-Clause
// Single field values.
#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>

using odbs::engine::blockArray;
using odbs::engine::FieldBlock;
using odbs::engine::Part;

namespace {

template <class Real>
const Real* componentsAt(FieldBlock& block, Part part, int index, int& n) {
  const Real* all = blockArray<Real>(block, part);
  n = all ? odbs::engine::partWidth(block, part) : 0;
  return all ? all + static_cast<std::ptrdiff_t>(index) * n : nullptr;
}

template <class Sequence, class Real>
Sequence listAt(FieldBlock& block, Part part, int index) {
  int n = 0;
  const Real* components = componentsAt<Real>(block, part, index, n);
  Sequence list(n);
  for (int i = 0; i < n; ++i) list.append(components[i]);
  return list;
}

template <class Rows, class Row, class Real>
Rows systemAt(FieldBlock& block, int index) {
  int n = 0;
  const Real* q = componentsAt<Real>(block, Part::kOrientation, index, n);
  Rows rows;
  if (!q) return rows;
  const odbs::engine::Matrix3 axes =
      odbs::engine::rotationOf({static_cast<double>(q[0]), static_cast<double>(q[1]),
                                static_cast<double>(q[2]), static_cast<double>(q[3])});
  for (const auto& axis : axes) {
    Row row;
    for (double part : axis) row.append(static_cast<Real>(part));
    rows.append(row);
  }
  return rows;
}

int labelAt(const int* labels, int index) {
  return labels ? labels[index] : -1;
}

}  // namespace

odb_FieldBulkData odb_FieldValue::bulk() const {
  if (!block_) odbs::throwEmptyHandle();
  return odb_FieldBulkData(block_);
}

odb_Enum::odb_ResultPositionEnum odb_FieldValue::position() const {
  return bulk().position();
}
odb_Enum::odb_DataTypeEnum odb_FieldValue::type() const {
  return bulk().type();
}
odb_Enum::odb_PrecisionEnum odb_FieldValue::precision() const {
  return bulk().precision();
}
const odb_Instance& odb_FieldValue::instance() const {
  return bulk().instance();
}
int odb_FieldValue::elementLabel() const {
  return labelAt(bulk().elementLabels(), index_);
}
int odb_FieldValue::nodeLabel() const {
  return labelAt(bulk().nodeLabels(), index_);
}
int odb_FieldValue::integrationPoint() const {
  return labelAt(bulk().integrationPoints(), index_);
}
odb_Enum::odb_ElementFaceEnum odb_FieldValue::face() const {
  const auto* faces = bulk().faces();
  return faces ? faces[index_] : odb_Enum::FACE_UNKNOWN;
}
const odb_SectionPoint& odb_FieldValue::sectionPoint() const {
  return bulk().sectionPoint();
}
const odb_String& odb_FieldValue::baseElementType() const {
  return bulk().baseElementType();
}

const float* odb_FieldValue::data(int& n) const {
  bulk();
  odbs::engine::keepWithFrame(block_);
  return componentsAt<float>(*block_, Part::kData, index_, n);
}
const double* odb_FieldValue::dataDouble(int& n) const {
  bulk();
  odbs::engine::keepWithFrame(block_);
  return componentsAt<double>(*block_, Part::kData, index_, n);
}
const float* odb_FieldValue::conjugateData(int& n) const {
  bulk();
  odbs::engine::keepWithFrame(block_);
  return componentsAt<float>(*block_, Part::kConjugate, index_, n);
}
const double* odb_FieldValue::conjugateDataDouble(int& n) const {
  bulk();
  odbs::engine::keepWithFrame(block_);
  return componentsAt<double>(*block_, Part::kConjugate, index_, n);
}
odb_SequenceFloat odb_FieldValue::data() const {
  bulk();
  return listAt<odb_SequenceFloat, float>(*block_, Part::kData, index_);
}
odb_SequenceDouble odb_FieldValue::dataDouble() const {
  bulk();
  return listAt<odb_SequenceDouble, double>(*block_, Part::kData, index_);
}
odb_SequenceFloat odb_FieldValue::conjugateData() const {
  bulk();
  return listAt<odb_SequenceFloat, float>(*block_, Part::kConjugate, index_);
}
odb_SequenceDouble odb_FieldValue::conjugateDataDouble() const {
  bulk();
  return listAt<odb_SequenceDouble, double>(*block_, Part::kConjugate, index_);
}

odb_SequenceSequenceFloat odb_FieldValue::localCoordSystem() const {
  bulk();
  return systemAt<odb_SequenceSequenceFloat, odb_SequenceFloat, float>(*block_, index_);
}
odb_SequenceSequenceDouble odb_FieldValue::localCoordSystemDouble() const {
  bulk();
  return systemAt<odb_SequenceSequenceDouble, odb_SequenceDouble, double>(*block_, index_);
}

float odb_FieldValue::invariant(odb_Enum::odb_InvariantEnum which) const {
  bulk();
  std::vector<double> components(static_cast<std::size_t>(block_->width));
  odbs::engine::readValues(*block_, Part::kData, index_, 1, components.data());
  return static_cast<float>(odbs::engine::invariant(
      which, block_->type, components.data(), block_->width, block_->descriptor->engineering));
}

float odb_FieldValue::magnitude() const {
  return invariant(odb_Enum::MAGNITUDE);
}
float odb_FieldValue::mises() const {
  return invariant(odb_Enum::MISES);
}
float odb_FieldValue::tresca() const {
  return invariant(odb_Enum::TRESCA);
}
float odb_FieldValue::press() const {
  return invariant(odb_Enum::PRESS);
}
float odb_FieldValue::inv3() const {
  return invariant(odb_Enum::INV3);
}
float odb_FieldValue::maxPrincipal() const {
  return invariant(odb_Enum::MAX_PRINCIPAL);
}
float odb_FieldValue::midPrincipal() const {
  return invariant(odb_Enum::MID_PRINCIPAL);
}
float odb_FieldValue::minPrincipal() const {
  return invariant(odb_Enum::MIN_PRINCIPAL);
}
float odb_FieldValue::maxInPlanePrincipal() const {
  return invariant(odb_Enum::MAX_INPLANE_PRINCIPAL);
}
float odb_FieldValue::minInPlanePrincipal() const {
  return invariant(odb_Enum::MIN_INPLANE_PRINCIPAL);
}
float odb_FieldValue::outOfPlanePrincipal() const {
  return invariant(odb_Enum::OUTOFPLANE_PRINCIPAL);
}

odb_SequenceFieldValue::odb_SequenceFieldValue(std::vector<std::shared_ptr<FieldBlock>> blocks)
    : blocks_(std::move(blocks)) {
  long long end = 0;
  for (const auto& block : blocks_) ends_.push_back(end += block->layout->nValues);
}

odb_FieldValue odb_SequenceFieldValue::value(int i) const {
  if (i < 0 || i >= size()) odbs::throwBadIndex(i, size());
  const int nViewed = size() - nOwn();
  if (i >= nViewed) return own_[static_cast<std::size_t>(i - nViewed)];
  const auto at = std::upper_bound(ends_.begin(), ends_.end(), static_cast<long long>(i));
  const auto place = static_cast<std::size_t>(at - ends_.begin());
  const long long first = place == 0 ? 0 : ends_[place - 1];
  return odb_FieldValue(blocks_[place], static_cast<int>(i - first));
}

odb_FieldValue& odb_SequenceFieldValue::operator[](int i) {
  const int nViewed = size() - nOwn();
  if (i >= nViewed && i < size()) return own_[static_cast<std::size_t>(i - nViewed)];
  return handedOut_.emplace(i, value(i)).first->second;
}

bool odb_SequenceFieldValue::isMember(const odb_FieldValue& value) const {
  for (int i = 0, n = size(); i < n; ++i) {
    if (this->value(i) == value) return true;
  }
  return false;
}
