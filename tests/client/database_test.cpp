// SPDX-License-Identifier: BSD-3-Clause
// Databases written through the database library's API, as a parent sees them through the server.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "client/catalogue.h"
#include "client/cli/cli.h"
#include "client/field_values.h"
#include "client/history.h"
#include "client/model.h"
#include "client/sets.h"
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

TEST_F(DatabaseTest, GivesBackSetsAndSections) {
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::string path = folder.file("random.odb");
    const Model expected = writeRandomModel(path, seed);
    const SetsReply sets = readSets(server, path, {});
    ASSERT_EQ(sets.sets.size(), expected.sections.size());  // one set for each instance
    const SetsReply summary = readSectionSummary(server, path);
    ASSERT_EQ(summary.sections.size(), expected.sections.size());
    for (std::size_t i = 0; i < expected.sections.size(); ++i) {
      const Instance& instance = expected.instances[i];
      EXPECT_EQ(sets.sets[i].name, "HALF");
      EXPECT_EQ(sets.sets[i].instance, instance.name);
      const std::vector<std::int32_t> half(
          instance.elementLabels.begin(),
          instance.elementLabels.begin() +
              static_cast<std::ptrdiff_t>((instance.elementLabels.size() + 1) / 2));
      EXPECT_EQ(sets.sets[i].labels, half);
      EXPECT_EQ(summary.sections[i].number, expected.sections[i].number);
      EXPECT_EQ(summary.sections[i].name, expected.sections[i].name);
      EXPECT_EQ(summary.sets.at(i).labels, half);
    }
  }
}

class ResultsTest : public DatabaseTest {
 protected:
  ResultsTest() : path(folder.file("results.odb")) { writeResults(path); }
  std::string path;
};

TEST_F(ResultsTest, AreCatalogued) {
  for (const Listing listing : {Listing::kNodal, Listing::kElement}) {
    CatalogueRequest request;
    request.listing = listing;
    // One file for each listing: the entries of one are misread as those of the other.
    request.cachePath = folder.file(listing == Listing::kNodal ? "nodal" : "element");
    const Catalogue computed = readCatalogue(server, path, request);
    const Catalogue cached = readCatalogue(server, path, request);
    EXPECT_EQ(cached.entries.size(), computed.entries.size());
    ASSERT_EQ(computed.steps.size(), 1u);
    EXPECT_EQ(computed.steps[0].name, "Pull");
    EXPECT_EQ(computed.steps[0].procedure, "*STEADY STATE");
    ASSERT_EQ(computed.fields.size(), 1u);
    EXPECT_EQ(computed.fields[0].name, listing == Listing::kNodal ? "U" : "E");
    ASSERT_EQ(computed.entries.size(), 2u);
    EXPECT_EQ(computed.entries[1].frameIndex, 1);
    EXPECT_EQ(computed.entries[1].isComplex, listing == Listing::kElement);
  }
}

TEST_F(ResultsTest, GiveNodalAndElementValuesBack) {
  ValuesRequest request;
  request.frame = 1;
  request.field = "U";
  const FieldValues nodal = readFieldValues(server, path, request);
  ASSERT_EQ(nodal.elementLabels.size(), static_cast<std::size_t>(kNTrusses + 1));
  request.field = "E";
  const FieldValues values = readFieldValues(server, path, request);
  ASSERT_EQ(values.elementLabels.size(), static_cast<std::size_t>(kNTrusses));
  EXPECT_EQ(values.blocks.at(0).head.elementType, "T3D2");
  EXPECT_EQ(values.blocks.at(0).nComponents, 2u);
  for (int i = 0; i < kNTrusses; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const float label = static_cast<float>(i + 1);
    ASSERT_EQ(nodal.elementLabels[at], i + 1);
    ASSERT_EQ(nodal.components[3 * at + 1], label / 2);
    ASSERT_EQ(values.elementLabels[at], i + 1);
    ASSERT_EQ(values.integrationPoints[at], 1);
    ASSERT_EQ(values.components[2 * at], label);
    ASSERT_EQ(values.components[2 * at + 1], -label);
  }
  request.field = "MISSING";
  EXPECT_TRUE(readFieldValues(server, path, request).blocks.empty());
}

TEST_F(ResultsTest, GiveHistoriesBack) {
  const History overview = readHistoryOverview(server, path);
  ASSERT_EQ(overview.steps.size(), 1u);
  ASSERT_EQ(overview.steps[0].regions.size(), 1u);
  EXPECT_EQ(overview.steps[0].regions[0].numbers[0], 1);
  const History history = readHistory(server, path, 1, {"MISSING", "Node ROW-1.1"});
  ASSERT_EQ(history.steps.at(0).regions.size(), 1u);
  const HistoryOutput& output = history.steps[0].regions[0].outputs.at(0);
  EXPECT_EQ(output.times, (std::vector<float>{0, 1, 2, 3, 4}));
  EXPECT_EQ(output.values, (std::vector<float>{0, 1, 4, 9, 16}));
}

TEST_F(ResultsTest, AreShownByTheCommandLineClient) {
  const std::string program = realServer().server;
  const std::pair<std::vector<std::string>, const char*> kCalls[] = {
      {{"catalogue", path}, "integration point"},
      {{"catalogue", path}, "Displacement"},
      {{"catalogue", path, "--listing", "nodal", "--frames", "every"}, "Displacement"},
      {{"values", path, "--field", "U", "--show", "range"}, "node 701"},
      {{"values", path, "--field", "E", "--position", "centroid"}, "T3D2"},
      {{"history", path}, "Node ROW-1.1"},
      {{"history", path, "--region", "all", "--format", "csv"}, "history,1,Node ROW-1.1,U1,4,16,"},
      {{"sets", path}, "Results"},
  };
  for (const auto& [arguments, piece] : kCalls) {
    std::vector<std::string> all = arguments;
    all.insert(all.end(), {"--server", program});
    std::ostringstream out, err;
    EXPECT_EQ(runClient(all, out, err), kDone) << arguments[0] << ": " << err.str();
    EXPECT_NE(out.str().find(piece), std::string::npos) << arguments[0] << "\n" << out.str();
  }
  std::ostringstream out, err;
  EXPECT_EQ(runClient({"values", path, "--server", program}, out, err), kUsage);
  EXPECT_EQ(runClient({"values", path, "--field", "Q", "--server", program}, out, err), kFailed);
  EXPECT_EQ(runClient({"catalogue", path + "x", "--server", program}, out, err), kFailed);
  EXPECT_EQ(runClient({"history", path + "x", "--server", program}, out, err), kFailed);
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
