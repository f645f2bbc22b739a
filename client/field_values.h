// SPDX-License-Identifier: BSD-3-Clause
// Field values (commands rl rs rm rv rt rb rn rg): the values of one field of one frame. Labels
// that did not change since the value before are left out of the stream; here they are back.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/read_reply.h"
#include "client/regions.h"

namespace odbs::client {

constexpr unsigned char kValueTypeTag = '%';
constexpr unsigned char kBlockTag = 0x1E;
constexpr unsigned char kDirectionsTag = '\'';

// Which labels a value record has, by its tag, in this order.
struct ValueLayout {
  bool hasElement = false;
  bool hasThird = false;
  bool hasPoint = false;
};

// The layout of a value record, or null for a tag of another kind.
const ValueLayout* valueLayout(unsigned char tag);

// A value record: the labels that it carries (the others are left as they were) and its components.
struct ValueView {
  std::int32_t elementLabel = 2147483647;
  std::int32_t thirdLabel = 2147483647;  // node of element-nodal values, face of face values, or -1
  std::int32_t integrationPoint = 2147483647;
  std::uint32_t nComponents = 0;  // conjugate ones included
  const unsigned char* components = nullptr;
  float component(std::uint32_t i) const { return getF32(components + 4 * i); }
};

// Brings `value` up to date by a value record.
void decodeValue(const Record& record, ValueView& value);

struct ValueBlockHead {
  std::string elementType;             // cut at 8 characters, padding taken off
  std::int32_t sectionPointField = 0;  // 1 or 2: the request's pick; else as the number
  std::int32_t sectionPoint = -1;      // -1: none
};
ValueBlockHead decodeBlock(const Record& record);
std::uint32_t decodeValueType(const Record& record);
// The local 1-direction and 2-direction, three components each.
std::vector<float> decodeDirections(const Record& record);

// "scalar", "vector", ... for a value-type flag.
std::string valueTypeName(std::uint32_t flag);

// Consecutive values of one block of the database.
struct ValueBlock {
  ValueBlockHead head;
  std::string instance;           // empty in a model of one instance
  std::uint32_t valueType = 0;    // 1 scalar, 2, 4, 8 tensors of 6, 4, 3 components, 16 vector
  std::uint32_t nComponents = 0;  // per value, conjugate ones included; 0 without values
  std::size_t firstValue = 0;     // position in the label arrays
  std::size_t nValues = 0;
  std::size_t firstComponent = 0;  // position in FieldValues::components
  std::size_t firstDirection = 0;  // position in FieldValues::directions
  std::size_t nDirections = 0;     // 0, or 6 for each value
};

// The values of all blocks, as arrays.
struct FieldValues : ReplyHead {
  std::vector<ValueBlock> blocks;
  std::vector<std::int32_t> elementLabels;      // one for each value
  std::vector<std::int32_t> thirdLabels;        //
  std::vector<std::int32_t> integrationPoints;  //
  std::vector<float> components;                // of each value in turn
  std::vector<float> directions;                // local 1- and 2-directions, where they came
};

class FieldValuesBuilder {
 public:
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);
  FieldValues finish();

 private:
  void addValue(const Record& record);

  FieldValues values_;
  ValueView last_;
  std::string instance_;
  std::uint32_t valueType_ = 0;
};

struct ValuesRequest {
  std::int32_t step = 1;      // from 1
  std::int32_t frame = 0;     // from 0
  std::string field;          // at most 199 characters; blanks are escaped
  std::int32_t position = 2;  // 0 centroids, 1 element nodes, 2 as stored (integration points)
  char letter = 's';          // s l m v t b n g, upper case: with local directions
  std::int32_t picks[2] = {-1, -1};  // section points, letter l only
  std::string items[2];  // letters n and g: layer and section point, such as "PLY-1.INNER", "2.3"
  std::vector<RegionQuery> regions;  // restrict the values to their union; none: all values
};

// Selects and asks. A field that the frame lacks, and regions that are not in the model, give no
// blocks. Throws DatabaseNotOpened, std::invalid_argument for a request that cannot be written, and
// what Connection and the decoders throw.
FieldValues readFieldValues(Connection& server, const std::string& path,
                            const ValuesRequest& request);

}  // namespace odbs::client
