// SPDX-License-Identifier: BSD-3-Clause
// Classification of field outputs, and the memo of descriptor lists.
#include "catalogue/field_descriptor.h"

#include <map>
#include <tuple>
#include <utility>

#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

// The bit of a position in the masks of positions.
int positionBit(int code) {
  switch (code) {
    case position::kElementNodal:
      return 8;
    case position::kIntegrationPoint:
      return 4;
    case position::kCentroid:
    case position::kElementFace:
      return 2;
    case position::kWholeElement:
      return 16;
    default:
      return 0;
  }
}

int tensorKindMask(const odb_FieldOutput& field, int type, int nLabels) {
  const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
  const int nBlocks = blocks.size();
  if (nBlocks < 2) return valueTypeFlag(type, nLabels);
  int mask = 0;
  for (int i = 0; i < nBlocks; ++i) {
    const odb_FieldBulkData& block = blocks[i];
    const int blockType = static_cast<int>(block.type());
    if (isTensor(blockType)) mask |= valueTypeFlag(blockType, block.width());
  }
  return mask;
}

// Everything that the locations tell: nodal class, positions, section points.
void describeLocations(const odb_FieldOutput& field, int type, FieldDescriptor& d) {
  const odb_SequenceFieldLocation& locations = field.locations();
  int mask = 0;
  bool nodal = false;
  bool layered = false;
  for (int i = 0; i < locations.size(); ++i) {
    const odb_FieldLocation& location = locations[i];
    const int code = static_cast<int>(location.position());
    nodal = nodal || code == position::kNodal;
    mask |= positionBit(code);
    layered = layered || sdk::sectionPointsOf(location).size() > 1;
  }
  if (nodal && type == data_type::kScalar) d.nodalClass = 2;
  if (nodal && type == data_type::kVector) d.nodalClass = 1;
  if (type == data_type::kScalar || type == data_type::kVector || isTensor(type)) {
    d.elementPositionMask = mask;
    d.hasSectionPoints = layered;
  }
  if (type == data_type::kVector || isTensor(type)) d.vectorPositionMask = mask;
}

int invariantMask(const odb_FieldOutput& field) {
  constexpr int kLastInvariant = 11;
  const odb_SequenceInvariant& invariants = field.validInvariants();
  int mask = 0;
  for (int code = 1; code <= kLastInvariant; ++code) {
    if (invariants.isMember(static_cast<odb_Enum::odb_InvariantEnum>(code))) mask |= 1 << code;
  }
  return mask;
}

std::string descriptionOf(const std::string& name, const odb_FieldOutput& field) {
  if (name == kModalSquares) return "Mises equivalent stress";
  if (name == kModalRoots) return "RMS of Mises equivalent stress";
  return field.description().CStr();
}

DescriptorList describeFrame(const odb_Frame& frame) {
  DescriptorList list;
  odb_FieldOutputRepositoryIT it(frame.fieldOutputs());
  for (it.first(); !it.isDone(); it.next()) {
    try {
      list.fields.push_back(
          sdk::guarded([&] { return describeField(it.currentKey().CStr(), it.currentValue()); }));
      list.hasStatus = list.hasStatus || list.fields.back().name == "STATUS";
    } catch (const sdk::ApiError&) {
      // Contract: what cannot be classified is not listed, and the walk goes on. Lists are kept for
      // good, so nothing else may take a field out of one.
      list.isWhole = false;
    }
  }
  return list;
}

// Lists are kept for good. The frames of a step mostly hold the same fields, so equal neighbours
// share one list: a step of ten thousand frames keeps a few.
class DescriptorMemo {
 public:
  const DescriptorList& get(int stepNumber, int frameIndex, const odb_Frame& frame) {
    const auto place = lists_.find({stepNumber, frameIndex});
    if (place != lists_.end()) return *place->second;
    auto fresh = std::make_shared<const DescriptorList>(describeFrame(frame));
    if (latest_ && latest_->isWhole == fresh->isWhole && latest_->fields == fresh->fields) {
      fresh = latest_;
    }
    latest_ = fresh;
    return *lists_.emplace(std::make_pair(stepNumber, frameIndex), fresh).first->second;
  }

 private:
  std::map<std::pair<int, int>, std::shared_ptr<const DescriptorList>> lists_;
  std::shared_ptr<const DescriptorList> latest_;
};

}  // namespace

bool FieldDescriptor::operator==(const FieldDescriptor& other) const {
  const auto all = [](const FieldDescriptor& d) {
    return std::tie(d.key, d.nodalClass, d.elementPositionMask, d.invariantMask, d.tensorKindMask,
                    d.vectorPositionMask, d.complex, d.hasSectionPoints, d.name, d.description,
                    d.componentLabels);
  };
  return all(*this) == all(other);
}

FieldDescriptor describeField(const std::string& key, const odb_FieldOutput& field) {
  FieldDescriptor d;
  d.key = key;
  d.name = field.name().CStr();
  d.description = descriptionOf(d.name, field);
  d.complex = field.isComplex();
  const odb_SequenceString& labels = field.componentLabels();
  for (int i = 0; i < labels.size(); ++i) d.componentLabels.emplace_back(labels[i].CStr());
  const int type = static_cast<int>(field.type());
  describeLocations(field, type, d);
  d.invariantMask = invariantMask(field);
  if (type == data_type::kScalar) {
    d.tensorKindMask = value_type::kScalar;
  } else if (type == data_type::kVector) {
    d.tensorKindMask = value_type::kVector;
  } else if (type == data_type::kMatrix && isModalMeasure(d.name)) {
    d.elementPositionMask = positionBit(position::kElementNodal);
    d.tensorKindMask = value_type::kScalar;
    d.hasSectionPoints = true;
  } else if (isTensor(type)) {
    d.tensorKindMask = tensorKindMask(field, type, static_cast<int>(d.componentLabels.size()));
  }
  return d;
}

const DescriptorList& frameDescriptors(const std::string& databaseName, int stepNumber,
                                       int frameIndex, const odb_Frame& frame) {
  static std::map<std::string, DescriptorMemo>& memos = *new std::map<std::string, DescriptorMemo>;
  return memos[databaseName].get(stepNumber, frameIndex, frame);
}

}  // namespace odbs
