// SPDX-License-Identifier: BSD-3-Clause
// Databases written through the database library's API, as a parent sees them through the server.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "client/cli/cli.h"
#include "client/model.h"
#include "tests/client/protocol_page.h"
#include "tests/client/real_server.h"
#include "tests/client/written_model.h"

namespace odbs::client::test {
namespace {

class DatabaseTest : public ::testing::Test {
 protected:
  Connection server{realServer()};
  tests::TemporaryFolder folder;
};

TEST_F(DatabaseTest, AnswersTheExampleOfTheProtocolPageByteForByte) {
  const std::string path = folder.file("rod.odb");
  writeRod(path);
  server.sendBytes("g " + path + "\n", {ReplyEnd::kAcknowledged, RecordFamily::kOther, 169});
  std::string seen;
  const unsigned char* bytes = nullptr;
  while (const std::size_t n = server.nextRaw(&bytes)) {
    seen.append(reinterpret_cast<const char*>(bytes), n);
  }
  EXPECT_EQ(seen, replyOfProtocolPage());
  EXPECT_EQ(server.end(), 0);
}

void expectSameMesh(const Instance& got, const Instance& expected) {
  EXPECT_EQ(got.name, expected.name);
  EXPECT_EQ(got.isRootAssembly, expected.isRootAssembly);
  EXPECT_EQ(got.nCoordinates, expected.nCoordinates);
  EXPECT_EQ(got.nodeLabels, expected.nodeLabels);
  EXPECT_EQ(got.coordinates, expected.coordinates);
  EXPECT_EQ(got.elementLabels, expected.elementLabels);
  EXPECT_EQ(got.elementTypes, expected.elementTypes);
  EXPECT_EQ(got.sectionNumbers, expected.sectionNumbers);
  EXPECT_EQ(got.connectivityOffsets, expected.connectivityOffsets);
  EXPECT_EQ(got.connectivity, expected.connectivity);
}

void expectSameSections(const Model& got, const Model& expected) {
  ASSERT_EQ(got.sections.size(), expected.sections.size());
  for (std::size_t i = 0; i < got.sections.size(); ++i) {
    const Section& section = got.sections[i];
    EXPECT_EQ(section.number, expected.sections[i].number);
    EXPECT_EQ(section.name, expected.sections[i].name);
    EXPECT_EQ(section.instance, expected.sections[i].instance);
    EXPECT_EQ(section.kind, expected.sections[i].kind);
    EXPECT_EQ(section.material, expected.sections[i].material);
    EXPECT_EQ(section.thickness, expected.sections[i].thickness);
  }
  ASSERT_EQ(got.materials.size(), expected.materials.size());
  for (std::size_t i = 0; i < got.materials.size(); ++i) {
    EXPECT_EQ(got.materials[i].name, expected.materials[i].name);
    EXPECT_EQ(got.materials[i].density, expected.materials[i].density);
    ASSERT_TRUE(got.materials[i].elastic.has_value());
    EXPECT_EQ(got.materials[i].elastic->type, "ISOTROPIC");
    EXPECT_EQ(got.materials[i].elastic->values, expected.materials[i].elastic->values);
  }
}

TEST_F(DatabaseTest, GivesBackTheModelsThatWereWritten) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::string path = folder.file("random.odb");  // each one replaces the one before
    const Model expected = writeRandomModel(path, seed);
    const Model got = readModel(server, path);
    EXPECT_EQ(got.title, expected.title);
    EXPECT_EQ(got.analysisKind, expected.analysisKind);
    EXPECT_EQ(got.elementTypes, expected.elementTypes);
    expectSameSections(got, expected);
    ASSERT_EQ(got.instances.size(), expected.instances.size());
    for (std::size_t i = 0; i < got.instances.size(); ++i) {
      expectSameMesh(got.instances[i], expected.instances[i]);
    }
    const Model nodesOnly = readModel(server, path, ModelScope::kNodesOnly);
    ASSERT_EQ(nodesOnly.instances.size(), expected.instances.size());
    EXPECT_EQ(nodesOnly.instances[0].coordinates, expected.instances[0].coordinates);
    EXPECT_TRUE(nodesOnly.instances[0].elementLabels.empty());
    EXPECT_TRUE(nodesOnly.sections.empty());
    if (HasFailure()) break;
  }
}

TEST_F(DatabaseTest, RefusesWhatIsNoDatabaseAndGoesOn) {
  const std::string text = folder.file("text.odb");
  std::ofstream(text) << "This is not a database.\n";
  std::ofstream(folder.file("empty.odb"));
  for (const std::string& path : {text, folder.file("empty.odb"), folder.file("missing.odb"),
                                  folder.file("."), std::string(4000, 'p'), std::string()}) {
    EXPECT_THROW(readModel(server, path), DatabaseNotOpened) << path;
    EXPECT_EQ(server.ping(), server.processId());
  }
}

TEST_F(DatabaseTest, IsShownByTheCommandLineClient) {
  const std::string path = folder.file("rod.odb");
  writeRod(path);
  std::ostringstream out, err;
  EXPECT_EQ(runClient({"model", path, "--server", realServer().server}, out, err), kDone);
  for (const char* piece : {"Rod", "T2D2", "truss", "STEEL", "210000"}) {
    EXPECT_NE(out.str().find(piece), std::string::npos) << piece << "\n" << out.str();
  }
  EXPECT_EQ(runClient({"model", path + "x", "--server", realServer().server}, out, err), kFailed);
}

}  // namespace
}  // namespace odbs::client::test
