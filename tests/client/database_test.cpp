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
#include "client/nodal_results.h"
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

TEST_F(DatabaseTest, AnswersTheExamplesOfTheProtocolPageByteForByte) {
  const struct {
    void (*write)(const std::string&);
    const char *select, *command;
  } kExamples[] = {{writeRod, "d", "g "}, {writeBrokenRod, "d 1 1 0 U", "rd "}};
  for (int i = 0; i < 2; ++i) {
    // A file each: written in the same second, they can't be told apart by time and size.
    const std::string path = folder.file(std::to_string(i) + ".odb");
    kExamples[i].write(path);
    const std::string expected = replyOfProtocolPage(i);
    ASSERT_FALSE(expected.empty());
    server.send(kExamples[i].select);
    server.sendBytes(kExamples[i].command + path + "\n",
                     {ReplyEnd::kNone, RecordFamily::kOther, expected.size()});
    std::string seen;
    const unsigned char* bytes = nullptr;
    while (const std::size_t n = server.nextRaw(&bytes)) {
      seen.append(reinterpret_cast<const char*>(bytes), n);
    }
    EXPECT_EQ(seen, expected) << kExamples[i].command;
  }
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
      {{"history", path, "--region", "all", "--format", "csv"}, "1,Node ROW-1.1,U1,4,16,"},
      {{"sets", path}, "Results"},
  };
  for (const auto& [arguments, piece] : kCalls) {
    std::vector<std::string> all = arguments;
    all.insert(all.end(), {"--server", program});
    std::ostringstream out, err;
    EXPECT_EQ(runClient(all, out, err), kDone) << arguments[0] << ": " << err.str();
    EXPECT_NE(out.str().find(piece), std::string::npos) << arguments[0] << "\n" << out.str();
  }
}

class NodalTest : public DatabaseTest {
 protected:
  NodalTest() : path(folder.file("failures.odb")) { writeFailures(path); }

  NodalResults ask(const std::string& field, int frame, int position,
                   const std::vector<std::int32_t>& labels = {}) {
    NodalRequest request;
    request.frame = frame;
    request.field = field;
    request.position = position;
    request.labels = labels;
    return readNodalResults(server, path, request);
  }

  // The failed elements of both instances: {"A 1", "B 2"}.
  std::vector<std::string> failed(int frame, int position,
                                  const std::vector<std::int32_t>& labels = {}) {
    std::vector<std::string> all;
    for (const FailedElements& one : ask("U", frame, position, labels).failed) {
      for (const std::int32_t label : one.labels) {
        all.push_back(one.instance + " " + std::to_string(label));
      }
    }
    return all;
  }

  std::string path;
};

TEST_F(NodalTest, GivesValuesConjugatesAndRotationsBack) {
  const NodalResults results = ask("U", 2, 0);
  ASSERT_EQ(results.blocks.size(), 2u);
  EXPECT_EQ(results.blocks[1].instance, "B");
  EXPECT_EQ(results.nodeLabels, (std::vector<std::int32_t>{1, 2, 3, 4, 1, 2, 3, 4}));
  for (std::size_t i = 0; i < 24; ++i) {
    const float x = static_cast<float>(i / 12 * 1000 + 200 + i % 3 * 10 + i / 3 % 4 + 1);
    ASSERT_EQ(results.components.at(i), x);
    ASSERT_EQ(results.conjugates.at(i), -x);
  }
  const NodalResults rotated = ask("U", 1, 2);
  ASSERT_EQ(rotated.blocks.size(), 5u);
  EXPECT_EQ(rotated.blocks[4].quantity, "UR3");
  EXPECT_EQ(rotated.blocks[4].instance, "B");
  EXPECT_EQ(rotated.components.at(rotated.blocks[4].firstComponent), 3);
  EXPECT_TRUE(rotated.conjugates.empty());
}

TEST_F(NodalTest, FindsContactVariablesWithTheirBlanks) {
  for (const char* name : {"CPRESS   S/M", "CPRESS S/M", "CPRESS"}) {
    const NodalResults results = ask(name, 1, 2);
    ASSERT_EQ(results.blocks.size(), 1u) << name;
    EXPECT_EQ(results.blocks[0].quantity, name);
    EXPECT_EQ(results.nodeLabels, std::vector<std::int32_t>{4});
    EXPECT_EQ(results.components, std::vector<float>{0.5F});
  }
  EXPECT_TRUE(ask("COPEN", 1, 2).blocks.empty());
  EXPECT_THROW(ask("U^", 1, 2), std::invalid_argument);
}

TEST_F(NodalTest, RestrictsFailedElementsToLabelsOnceOnly) {
  using Texts = std::vector<std::string>;
  std::vector<std::int32_t> many(2000);  // more than a command line holds
  for (int i = 0; i < 2000; ++i) many[static_cast<std::size_t>(i)] = 2002 - i;
  EXPECT_EQ(failed(1, 2), (Texts{"A 1", "A 3", "B 2"}));
  EXPECT_EQ(failed(2, 2), Texts{});
  EXPECT_EQ(failed(2, 4), (Texts{"A 1", "A 3", "B 2"}));
  EXPECT_EQ(failed(2, 0, many), Texts{"A 3"});
  server.command("a 1");
  server.command("b 2");  // another's list, which the next request drops
  EXPECT_EQ(failed(2, 0), (Texts{"A 1", "A 3", "B 2"}));
}

TEST_F(NodalTest, IsShownByTheCommandLineClient) {
  const auto csv = [this](const char* table) {
    std::ostringstream out, err;
    EXPECT_EQ(runClient({"nodal", path, "--field", "U", "--frame", "1", "--labels", "1,2",
                         "--format", "csv", "--table", table, "--server", realServer().server},
                        out, err),
              kDone)
        << err.str();
    return out.str();
  };
  EXPECT_NE(csv("value").find("\nB,U,2,1102,1112,1122\n"), std::string::npos) << csv("value");
  EXPECT_NE(csv("value").find("\nB,UR2,1,2,,\n"), std::string::npos);
  EXPECT_EQ(csv("failed"), "instance,element\nA,1\nB,2\n");
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
