// SPDX-License-Identifier: BSD-3-Clause
// One row of the tables of `describe`: what a tag means in the replies of one family.
#pragma once

#include <vector>

#include "client/describe.h"

namespace odbs::client {

struct DescribeRow {
  RecordFamily family;
  unsigned char tag;
  const char* kind;
  std::vector<Field> (*fields)(const Record& record);  // throws MalformedRecord
};

// The row of a set, catalogue, history, field value or nodal result record; null when there is
// none.
const DescribeRow* findResultRow(unsigned char tag, RecordFamily family);

}  // namespace odbs::client
