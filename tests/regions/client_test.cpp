// SPDX-License-Identifier: BSD-3-Clause
// Regions and layer pairs as the reference parent sees them.
#include <sstream>

#include "client/cli/cli.h"
#include "client/field_values.h"
#include "tests/client/built_server.h"
#include "tests/client/records.h"
#include "tests/regions/layered_model.h"

namespace odbs::client::test {
namespace {

using Labels = std::vector<std::int32_t>;

class RegionClient : public tests::LayeredModel {
 protected:
  // What the command line prints; the exit status in front.
  std::string run(std::vector<std::string> arguments) {
    save();
    const std::string server = realServer().server;
    arguments.insert(arguments.end(), {"--server", server, "--format", "csv"});
    std::ostringstream out, err;
    const int status = runClient(arguments, out, err);
    return std::to_string(status) + " " + out.str() + err.str();
  }
};

TEST(RegionQueries, AreKindsAndNames) {
  const RegionQuery plain = parseRegionQuery("elements=A=B");
  EXPECT_EQ(plain.kind, 1);
  EXPECT_EQ(plain.value, 0);
  EXPECT_EQ(plain.name, "A=B");
  const RegionQuery layer = parseRegionQuery("layer:3=MY PLATE");
  EXPECT_EQ(layer.kind, 8);
  EXPECT_EQ(layer.value, 3);
  EXPECT_EQ(layer.name, "MY PLATE");
  for (const char* wrong : {"", "A", "=A", "elements", "elements=", "parts=A", "layer:=A",
                            "layer:x=A", "layer:-1=A", "layer:99999999999=A"}) {
    EXPECT_THROW(parseRegionQuery(wrong), std::invalid_argument) << wrong;
  }
}

TEST(RegionRecords, ThatAreCutOrTooLongAreRefused) {
  const std::string whole = record("R 5 2 'PLATE' -1 7");
  const RegionCount count = decodeRegion(recordOf(whole));
  EXPECT_EQ(count.query.kind, 5);
  EXPECT_EQ(count.query.value, 2);
  EXPECT_EQ(count.query.name, "PLATE");
  EXPECT_EQ(count.nElements, 4294967295u);
  EXPECT_EQ(count.nNodes, 7u);
  for (std::size_t n = 1; n < whole.size(); ++n) {
    const std::string cut = whole.substr(0, n);
    EXPECT_THROW(decodeRegion(recordOf(cut)), MalformedRecord) << n;
  }
  const std::string longer = whole + "x";
  EXPECT_THROW(decodeRegion(recordOf(longer)), MalformedRecord);
}

TEST_F(RegionClient, CountsAndListsRegions) {
  addInstance();
  save();
  Connection server(realServer());
  const RegionsReply reply = readRegions(
      server, path_, {parseRegionQuery("type=S4R"), parseRegionQuery("section=A.BODY")});
  ASSERT_EQ(reply.counts.size(), 2u);
  EXPECT_EQ(reply.counts[0].nElements, 4u);
  EXPECT_EQ(reply.counts[1].query.name, "A.BODY");
  EXPECT_EQ(reply.counts[1].nElements, 1u);
  ASSERT_EQ(reply.members.sets.size(), 3u);
  EXPECT_EQ(reply.members.sets[1].instance, "B");
  EXPECT_EQ(reply.members.sets[1].labels, (Labels{11, 12}));
  EXPECT_EQ(reply.members.sets[2].instance, "A");
  EXPECT_EQ(reply.members.sets[2].labels, Labels{20});
  EXPECT_THROW(readRegions(server, path_ + ".none", {parseRegionQuery("type=S4R")}),
               DatabaseNotOpened);
}

TEST_F(RegionClient, RefusesNamesThatTheServerWouldMisread) {
  save();
  Connection server(realServer());
  for (const char* name : {"1", "0 A", "A\nq", ""}) {
    EXPECT_THROW(readRegions(server, path_, {{1, 0, name}}), std::invalid_argument) << name;
  }
  EXPECT_EQ(readRegions(server, path_, {{1, 0, "2"}}).counts.size(), 1u);
}

TEST_F(RegionClient, ReadsPairsAndSelectedValues) {
  save();
  Connection server(realServer());
  ValuesRequest request;
  request.field = "SE";
  request.letter = 'n';
  request.items[0] = "PLY-1.INNER";
  request.items[1] = "STEEL.OUTER";
  request.regions = {parseRegionQuery("type=S4R")};
  const FieldValues values = readFieldValues(server, path_, request);
  EXPECT_EQ(values.elementLabels, (Labels{11, 12}));
  EXPECT_EQ(values.components, (std::vector<float>{101, 203}));
  EXPECT_EQ(values.blocks.at(1).head.sectionPointField, 2);
  request.regions = {parseRegionQuery("type=S4")};
  EXPECT_TRUE(readFieldValues(server, path_, request).blocks.empty());
  request.items[1] = "TWO WORDS";
  EXPECT_THROW(readFieldValues(server, path_, request), std::invalid_argument);
}

TEST_F(RegionClient, HasACommandAndOptions) {
  EXPECT_EQ(run({"regions", path_, "layer:2=LAY"}),
            "0 kind,value,name,elements,nodes\nlayer,2,LAY,1,0\n");
  EXPECT_EQ(run({"regions", path_, "layer:2=LAY", "nodes=NONE"})[0], '1');
  const std::string values =
      run({"values", path_, "--field", "SE", "--layers", "1.INNER:2.OUTER", "--show", "values"});
  EXPECT_NE(values.find(",7,11,-1,0,107"), std::string::npos) << values;
  EXPECT_NE(run({"values", path_, "--field", "SE", "--letter", "v", "--region", "section:2=LAY",
                 "--show", "values"})
                .find(",2,11,-1,0,102\n"),
            std::string::npos);
  EXPECT_EQ(run({"regions", path_, "LAY"})[0], '2');
  EXPECT_EQ(run({"values", path_, "--field", "SE", "--plies", "LAY"})[0], '2');
}

}  // namespace
}  // namespace odbs::client::test
