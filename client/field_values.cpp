// SPDX-License-Identifier: BSD-3-Clause
// Decoders for the records of field values, their builder, and the request.
#include "client/field_values.h"

#include "base/text.h"
#include "client/records/cursor.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

constexpr struct {
  unsigned char tag;
  ValueLayout layout;  // element, third, point
} kLayouts[] = {
    {0x15, {false, false, false}}, {0x16, {false, true, false}}, {0x17, {false, false, true}},
    {0x18, {false, true, true}},   {0x1F, {true, true, true}},   {0x20, {true, false, true}},
    {0x21, {true, true, false}},   {0x22, {true, false, false}},
};

constexpr std::size_t kTypeField = 8;

}  // namespace

const ValueLayout* valueLayout(unsigned char tag) {
  for (const auto& row : kLayouts) {
    if (row.tag == tag) return &row.layout;
  }
  return nullptr;
}

void decodeValue(const Record& record, ValueView& value) {
  Cursor cursor(record, "value record");
  const ValueLayout* layout = valueLayout(record.tag);
  if (layout == nullptr) cursor.fail("the tag " + std::to_string(record.tag));
  if (layout->hasElement) value.elementLabel = cursor.i32();
  if (layout->hasThird) value.thirdLabel = cursor.i32();
  if (layout->hasPoint) value.integrationPoint = cursor.i32();
  if (cursor.left() % 4 != 0) cursor.fail("the components end in the middle of one");
  value.nComponents = cursor.left() / 4;
  value.components = cursor.bytes(cursor.left(), "components");
}

ValueBlockHead decodeBlock(const Record& record) {
  Cursor cursor(record, "block record");
  ValueBlockHead head;
  head.elementType.assign(reinterpret_cast<const char*>(cursor.bytes(kTypeField, "a type name")),
                          kTypeField);
  head.elementType.erase(head.elementType.find_last_not_of(' ') + 1);
  head.sectionPointField = cursor.i32();
  head.sectionPoint = cursor.i32();
  cursor.expectEnd();
  return head;
}

std::uint32_t decodeValueType(const Record& record) {
  Cursor cursor(record, "value-type record");
  const std::uint32_t flag = cursor.u32();
  cursor.expectEnd();
  return flag;
}

std::vector<float> decodeDirections(const Record& record) {
  Cursor cursor(record, "direction record");
  std::vector<float> directions(6);
  for (float& component : directions) component = cursor.f32();
  cursor.expectEnd();
  return directions;
}

std::string valueTypeName(std::uint32_t flag) {
  switch (flag) {
    case 1:
      return "scalar";
    case 2:
      return "tensor of 6";
    case 4:
      return "tensor of 4";
    case 8:
      return "tensor of 3";
    case 16:
      return "vector";
    default:
      return "type " + std::to_string(flag);
  }
}

void FieldValuesBuilder::add(const Record& record) {
  if (valueLayout(record.tag) != nullptr) return addValue(record);
  switch (record.tag) {
    case kNameTag:
      instance_ = decodeName(record);
      return;
    case kValueTypeTag:
      valueType_ = decodeValueType(record);
      return;
    case kDirectionsTag: {
      const std::vector<float> directions = decodeDirections(record);
      if (values_.blocks.empty())
        throw MalformedRecord(record.offset, "directions without a block");
      values_.blocks.back().nDirections += directions.size();
      values_.directions.insert(values_.directions.end(), directions.begin(), directions.end());
      return;
    }
    case kBlockTag: {
      ValueBlock block;
      block.head = decodeBlock(record);
      block.instance = instance_;
      block.valueType = valueType_;
      block.firstValue = values_.elementLabels.size();
      block.firstComponent = values_.components.size();
      block.firstDirection = values_.directions.size();
      values_.blocks.push_back(std::move(block));
      return;
    }
    default:
      if (!takeHead(record, values_)) failUnexpected(record, "among values");
  }
}

void FieldValuesBuilder::addValue(const Record& record) {
  if (values_.blocks.empty()) throw MalformedRecord(record.offset, "a value without a block");
  decodeValue(record, last_);
  ValueBlock& block = values_.blocks.back();
  if (block.nValues == 0) block.nComponents = last_.nComponents;
  if (block.nComponents != last_.nComponents) {
    throw MalformedRecord(record.offset, "value record: " + std::to_string(last_.nComponents) +
                                             " components in a block of " +
                                             std::to_string(block.nComponents));
  }
  ++block.nValues;
  values_.elementLabels.push_back(last_.elementLabel);
  values_.thirdLabels.push_back(last_.thirdLabel);
  values_.integrationPoints.push_back(last_.integrationPoint);
  for (std::uint32_t i = 0; i < last_.nComponents; ++i) {
    values_.components.push_back(last_.component(i));
  }
}

FieldValues FieldValuesBuilder::finish() {
  FieldValues values = std::move(values_);
  *this = FieldValuesBuilder();
  return values;
}

namespace {

bool hasLetter(const ValuesRequest& request, char lower) {
  return request.letter == lower || request.letter == lower - 'a' + 'A';
}

// The line of the request itself.
std::string valuesLine(const std::string& path, const ValuesRequest& request) {
  const std::string head = std::string("r") + request.letter + " ";
  if (hasLetter(request, 'l')) {
    return head + std::to_string(request.picks[0]) + " " + std::to_string(request.picks[1]) + "," +
           path;
  }
  if (!hasLetter(request, 'n') && !hasLetter(request, 'g')) return head + path;
  for (const std::string& item : request.items) {
    if (item.empty() || item.find_first_of(": \t\v\f\r") != std::string::npos) {
      throw std::invalid_argument("the layer \"" + item + "\" cannot be asked for");
    }
  }
  if (path.find_first_of(" \t\v\f\r") != std::string::npos) {
    throw std::invalid_argument("pairs of layers cannot be asked of a path with blanks: " + path);
  }
  return head + request.items[0] + ":" + request.items[1] + ":" + path;
}

// True when the regions hold anything. With an empty selection the server would send everything.
bool selectAny(Connection& server, const std::string& path, const ValuesRequest& request,
               FieldValues& values) {
  const auto counts = selectRegions(server, path, request.regions, values.messages);
  if (counts.size() < request.regions.size()) throw DatabaseNotOpened(path, values.messages);
  for (const RegionCount& count : counts) {
    if (count.nElements + count.nNodes > 0) return true;
  }
  return false;
}

}  // namespace

FieldValues readFieldValues(Connection& server, const std::string& path,
                            const ValuesRequest& request) {
  const std::string select = selectLine(request.regions.empty() ? 'd' : 'D', request.step,
                                        request.frame, request.position, request.field);
  const std::string line = valuesLine(path, request);
  FieldValues nothing;
  if (!request.regions.empty() && !selectAny(server, path, request, nothing)) return nothing;
  server.send(select);
  server.send(line);
  return requireOpened(path, readReply(server, FieldValuesBuilder()));
}

}  // namespace odbs::client
