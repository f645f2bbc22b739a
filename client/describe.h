// SPDX-License-Identifier: BSD-3-Clause
// Any record as a kind and named fields, for printing and for tests. What a tag means depends on
// the family of the reply; the table in describe.cpp has one row for each.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "client/records/command_rules.h"
#include "client/records/record_stream.h"

namespace odbs::client {

// What a field or a table cell may hold. Singles stay singles, so that they print with the digits
// that they have.
using Value =
    std::variant<std::string, std::int64_t, float, double, std::vector<std::int64_t>,
                 std::vector<float>, std::vector<std::string>, std::vector<std::vector<float>>>;

struct Field {
  const char* name;
  Value value;
};

struct Description {
  std::string kind;  // "node", "section", ...; "unknown" for a tag that the family does not have
  std::vector<Field> fields;
};

// Decodes the record and names its fields. A tag without a row is described by its bytes. Throws
// MalformedRecord.
Description describe(const Record& record, RecordFamily family);

}  // namespace odbs::client
