// SPDX-License-Identifier: BSD-3-Clause
// Why an answer is empty. The server reports no wrong argument, so that a step that does not exist
// and a misspelled field look alike; these functions query what there is and throw an Error that
// names what is wrong and what exists.
#pragma once

#include "client/cli/cli.h"
#include "client/field_values.h"

namespace odbs::client {

// The field of one frame that `values` and `nodal` ask for.
struct FieldChoice {
  std::int32_t step = 1, frame = 0;
  std::string field;
  std::int32_t position = 0;
};

// From --step, --frame, --field and --position; `position` is the default. Throws UsageError.
FieldChoice fieldChoice(const Call& call, const char* position);

// `command`'s request for the field.
template <typename Request>
Request requestFor(const FieldChoice& choice) {
  Request request;
  request.step = choice.step;
  request.frame = choice.frame;
  request.field = choice.field;
  request.position = choice.position;
  return request;
}

// Throws unless the frame holds the field, or there are no steps to look for it in.
void requireField(Connection& server, const std::string& path, const FieldChoice& choice);

// Throws unless the step exists; 0 means all of them.
void requireStep(Connection& server, const std::string& path, std::int32_t step);

// Throws for the first of the regions that has neither elements nor nodes.
void requireRegions(Connection& server, const std::string& path,
                    const std::vector<RegionQuery>& regions,
                    const std::vector<RegionCount>& counts);

// Throws: a request for values, all of whose names exist, was answered without any.
[[noreturn]] void failWithoutValues(Connection& server, const std::string& path,
                                    const ValuesRequest& request);

}  // namespace odbs::client
