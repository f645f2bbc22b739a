// SPDX-License-Identifier: BSD-3-Clause
// A model of a composite shell, a homogeneous shell and a solid, with one field that has a value at
// each of their section points, and a server that answers about it.
#pragma once

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/payload.h"
#include "tests/support/reply.h"
#include "tests/support/sequences.h"

namespace odbs::tests {

class LayeredModel : public ::testing::Test {
 protected:
  // Part "P", nodes 1 to 8 of a unit cube, and its instance "A":
  //
  //   element   section    section points
  //   11 S4R    LAY        1 2 3 in layer 1 (CARBON, "PLY-1"), 4 5 6 7 in layer 2 (GLASS)
  //   12 S4R    ONE        1 2 3, STEEL
  //   20 C3D8   BODY       none, STEEL
  //
  // LAY is assigned to set "LAYERED"; ONE and BODY are known by their categories only. Field "SE"
  // has at element e, point p the value 100 (e - 10) + p, and 1000 in the solid.
  LayeredModel();
  ~LayeredModel() override;

  odb_Instance& instance(const char* name = "A") { return odb_->rootAssembly().instances()[name]; }
  // Another instance, "B"; it has no values.
  odb_Instance& addInstance() { return odb_->rootAssembly().Instance("B", odb_->parts()["P"]); }

  // Saves and closes; from then on the server can be asked.
  void save();
  // Sends a line that is not acknowledged; the records of the reply to `head` and the path.
  void tell(const std::string& line);
  Records ask(const std::string& head);
  // The same to `r`, with the values alone, as "element/point:value" of each value record of one
  // component; for nodal values the node's label stands first and the point is -1.
  std::vector<std::string> values(const std::string& head);

  odb_SectionPoint point(const char* category, int number);

  TemporaryFolder folder_;
  std::string path_;
  odb_Odb* odb_ = nullptr;  // null once saved
  odb_SectionApi sections_;
  odb_Frame frame_;
  std::unique_ptr<ServerProcess> server_;
};

}  // namespace odbs::tests
