// SPDX-License-Identifier: BSD-3-Clause
// Databases written through the database library's API, as a parent sees them through the server.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "client/cli/cli.h"
#include "client/model.h"
#include "client/nodal_results.h"
#include "client/sets.h"
#include "tests/client/built_server.h"
#include "tests/client/written_model.h"
#include "tests/support/temporary_folder.h"

namespace odbs::client::test {
namespace {

// The bytes of one of the page's dumps, counted from 0: per line an offset, up to 16 bytes in hex,
// and a margin. Empty when the page has no such dump.
std::string replyOfProtocolPage(int dump = 0) {
  constexpr std::size_t kFirstColumn = 6, kBytesPerLine = 16;
  std::ifstream page(std::string(ODBS_SOURCE_DIR) + "/docs/protocol.md");
  std::string bytes;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```" && isInside && dump-- == 0) break;
    if (line == "```") isInside = false;
    for (std::size_t i = 0; isInside && dump == 0 && i < kBytesPerLine; ++i) {
      const std::size_t column = kFirstColumn + 3 * i;
      if (column + 2 > line.size() || line[column] == ' ') break;
      bytes += static_cast<char>(std::strtol(line.substr(column, 2).c_str(), nullptr, 16));
    }
    if (line == "```hexdump") isInside = true;
  }
  return bytes;
}

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

template <typename List>
std::string listed(const List& list) {
  std::ostringstream text;
  for (const auto& item : list) text << ' ' << item;
  return text.str() + '\n';
}

// What both sides of a comparison know of a model.
std::string textOf(const Model& model) {
  std::ostringstream text;
  text.precision(9);
  text << model.title << model.analysisKind << listed(model.elementTypes);
  for (const Section& one : model.sections) {
    text << one.number << one.name << ' ' << one.instance << static_cast<int>(one.kind)
         << one.material << one.thickness << '\n';
  }
  for (const Material& one : model.materials) {
    const Elastic elastic = one.elastic.value_or(Elastic{});
    text << one.name << one.density << elastic.type << listed(elastic.values);
  }
  for (const Instance& one : model.instances) {
    text << one.name << one.isRootAssembly << one.nCoordinates << listed(one.nodeLabels)
         << listed(one.coordinates) << listed(one.elementLabels) << listed(one.elementTypes)
         << listed(one.sectionNumbers) << listed(one.connectivityOffsets)
         << listed(one.connectivity);
  }
  return text.str();
}

TEST_F(DatabaseTest, GivesBackTheModelsThatWereWritten) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const std::string path = folder.file("random.odb");  // each one replaces the one before
    const Model expected = writeRandomModel(path, seed);
    ASSERT_EQ(textOf(readModel(server, path)), textOf(expected));
    const Model nodesOnly = readModel(server, path, ModelScope::kNodesOnly);
    ASSERT_EQ(nodesOnly.instances.size(), expected.instances.size());
    EXPECT_EQ(nodesOnly.instances[0].coordinates, expected.instances[0].coordinates);
    EXPECT_TRUE(nodesOnly.instances[0].elementLabels.empty());
    EXPECT_TRUE(nodesOnly.sections.empty());
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

TEST_F(NodalTest, FindsVariablesWhoseNamesHaveBlanks) {
  EXPECT_EQ(ask("CPRESS   S/M", 1, 2).components, std::vector<float>{0.5F});
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

}  // namespace
}  // namespace odbs::client::test
