// SPDX-License-Identifier: BSD-3-Clause
// A database written through the public API, and what a real server process answers about it.
#pragma once

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/payload.h"
#include "tests/support/reply.h"
#include "tests/support/sequences.h"
#include "tests/support/server_process.h"

namespace odbs::tests {

class ModelTest : public ::testing::Test {
 protected:
  ModelTest();
  ~ModelTest() override;

  // An empty part with that name.
  odb_Part& part(const char* name, odb_Enum::odb_DimensionEnum space = odb_Enum::THREE_D);

  // A part "P" with nodes 1 to 8 of a unit cube and C3D8R element 10 in set "ALL", and its
  // instance.
  odb_Instance& cube(const char* instanceName = "CUBE-1", const char* categoryName = "solid");

  odb_Instance& instance(const char* name, odb_Part& part);

  // Saves and closes the database, and returns the records of the server's reply to `g` or `G`.
  Records stream(char command = 'g');

  // The same for a line that is `head` and the database's path.
  Records streamLine(const std::string& head);
  // The same without saving.
  Records streamClosed(const std::string& head);

  // The records of `g` with that tag.
  Records streamed(int tag) { return withTag(stream(), tag); }

  TemporaryFolder folder_;
  std::string path_;
  std::string replyBytes_;  // the whole reply to the last command, framing and acknowledgement too
  odb_Odb* odb_ = nullptr;  // null once it was streamed
  odb_SectionApi sections_;
  odb_MaterialApi materials_;
};

}  // namespace odbs::tests
