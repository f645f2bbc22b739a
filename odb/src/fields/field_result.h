// SPDX-License-Identifier: BSD-3-Clause
// Blocks that arithmetic fills with results.
#pragma once

#include "odb/src/fields/field_data.h"

namespace odbs::engine {

bool isDouble(const FieldBlock& block);

// A block for the values of `like`, with room for its numbers.
Block resultBlock(const FieldBlock& like, const std::shared_ptr<const FieldDescriptor>& descriptor,
                  odb_Enum::odb_DataTypeEnum type, int width, bool complex, bool isDouble);

// Enters the i-th number of a part of a result block.
void setNumber(FieldBlock& block, Part part, std::size_t i, double value);

// Copies the local systems, where the result has some.
void copyOrientation(FieldBlock& from, FieldBlock& to);

// The block of `field` with the same values as `block`. Throws odb_Exception when there is none.
FieldBlock& partner(const FieldData& field, FieldBlock& block);

}  // namespace odbs::engine
