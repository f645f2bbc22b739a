// SPDX-License-Identifier: BSD-3-Clause
// A small database with results, written through the public API, and a server that answers about
// it.
#pragma once

#include <odb_API.h>
#include <odb_embedded.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/payload.h"
#include "tests/support/reply.h"
#include "tests/support/sequences.h"

namespace odbs::tests {

class ResultTest : public ::testing::Test {
 protected:
  // Part "P": nodes 1 to 8 of a unit cube, C3D8 element 10 (8 integration points), and its instance
  // "I". Steps and results are up to the test.
  ResultTest();
  ~ResultTest() override;

  odb_Step& step(const char* name, odb_Enum::odb_DomainEnum domain = odb_Enum::TIME,
                 const char* procedure = "*STATIC");
  // A scalar at nodes 1 and 2.
  odb_FieldOutput& nodalScalar(odb_Frame& frame, const char* name, float first = 0);
  // A tensor at the integration points of element 10: component k of point p (1 to 8) is
  // 10 p + k.
  odb_FieldOutput& stress(odb_Frame& frame);

  // The corners of a unit cube, as elements of eight nodes have them.
  static std::vector<std::vector<float>> corners();

  // Saves and closes the database; from then on the server can be asked.
  void save();
  // The records of the reply to `head` and the database's path; saves first where needed.
  Records ask(const std::string& head);
  // The selection of `D` and `d`; position as the parent sends it.
  static constexpr int kCentroid = 0, kElementNodal = 1, kStored = 2;
  void select(int step, int frame, int position, const char* variable);
  // The records of the reply to `head` and the path that follow title and analysis kind.
  Records values(const std::string& head);

  TemporaryFolder folder_;
  std::string path_;
  odb_Odb* odb_ = nullptr;  // null once saved
  std::string instanceName_ = "I";
  std::unique_ptr<ServerProcess> server_;

  odb_Instance& instance() { return odb_->rootAssembly().instances()[instanceName_.c_str()]; }
};

}  // namespace odbs::tests
