// SPDX-License-Identifier: BSD-3-Clause
// Nodal results (command rd): one variable at its nodes as it is stored, and with displacements the
// rotations and the elements that have failed.
#pragma once

#include <string>
#include <vector>

#include "client/read_reply.h"

namespace odbs::client {

constexpr unsigned char kFailedElementTag = '"';

// What a value record's tag means.
struct NodalTag {
  unsigned char tag;
  const char* rotation;  // "UR", "UR1", "UR2", "UR3"; empty for the variable that was asked for
  bool isComplex;        // conjugate components follow the others, as many
};

// The row of a value record's tag, or null for a tag of another kind.
const NodalTag* nodalTag(unsigned char tag);

// A value record, seen in place.
struct NodalView {
  std::int32_t nodeLabel = 0;
  std::uint32_t nComponents = 0;              // without the conjugate ones
  const unsigned char* components = nullptr;  // and the conjugate ones after them
  const unsigned char* conjugates = nullptr;  // null for a real value
  float component(std::uint32_t i) const { return getF32(components + 4 * i); }
  float conjugate(std::uint32_t i) const { return getF32(conjugates + 4 * i); }
};

NodalView decodeNodalValue(const Record& record);

// The element's label.
std::int32_t decodeFailedElement(const Record& record);

// Consecutive values of one instance and one quantity that are alike in their components.
struct NodalBlock {
  std::string quantity;           // the variable, or "UR", "UR1", "UR2", "UR3" after it
  std::string instance;           // empty in a model of one instance
  bool isComplex = false;         //
  std::uint32_t nComponents = 0;  // per value, conjugate ones not counted
  std::size_t firstValue = 0;     // position in NodalResults::nodeLabels
  std::size_t nValues = 0;
  std::size_t firstComponent = 0;  // position in NodalResults::components
  std::size_t firstConjugate = 0;  // position in NodalResults::conjugates, of complex blocks
};

// The failed elements of one instance.
struct FailedElements {
  std::string instance;              // empty in a model of one instance
  std::vector<std::int32_t> labels;  // ascending, each once
};

// A whole reply, the values of all blocks as arrays.
struct NodalResults : ReplyHead {
  std::vector<NodalBlock> blocks;        // in the order of the stream
  std::vector<std::int32_t> nodeLabels;  // one for each value
  std::vector<float> components;         // of each value in turn
  std::vector<float> conjugates;         // of each value of the complex blocks in turn
  std::vector<FailedElements> failed;    // one for each instance that has any
};

class NodalResultsBuilder {
 public:
  // `variable`: the name for the blocks of what was asked for.
  explicit NodalResultsBuilder(std::string variable) : variable_(std::move(variable)) {}
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);
  NodalResults finish();

 private:
  void addValue(const Record& record, const NodalTag& tag);
  void addFailed(const Record& record);

  std::string variable_;
  NodalResults results_;
  std::string instance_;
};

struct NodalRequest {
  std::int32_t step = 1;   // from 1
  std::int32_t frame = 0;  // from 0
  std::string field;       // at most 199 characters; blanks are escaped
  // With displacements, 0 (or 4, the database's own code for it) also gives the elements that
  // failed in earlier frames; any other position only those whose status in this frame is 0.
  std::int32_t position = 0;
  std::vector<std::int32_t> labels;  // restrict the failed elements; none: all
};

// Selects and asks. A field that the frame lacks gives no blocks; the name of a contact variable
// need not match to the last blank (docs/protocol.md). The server's label list is empty
// afterwards. Throws DatabaseNotOpened, std::invalid_argument for a request
// that cannot be written, and what Connection and the decoders throw.
NodalResults readNodalResults(Connection& server, const std::string& path,
                              const NodalRequest& request);

}  // namespace odbs::client
