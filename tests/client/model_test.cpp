// SPDX-License-Identifier: BSD-3-Clause
// The model that is put together from a stream of records.
#include "client/model.h"

#include <gtest/gtest.h>

#include "tests/client/bytes.h"

namespace odbs::client::test {
namespace {

Model build(const std::vector<Bytes>& records) {
  ModelBuilder builder;
  std::uint64_t offset = 0;
  for (const Bytes& record : records) {
    builder.add(recordOf(record.payload(), offset));
    offset += record.payload().size() + 2;
  }
  return builder.finish();
}

Bytes node(std::uint32_t label, float x, float y) {
  return Bytes(3).u32(label).f32(x).f32(y);
}

Bytes truss(std::uint32_t label, std::uint32_t first, std::uint32_t second) {
  return Bytes(4).raw("T2D2    ").u32(label).u32(1).u32(first).u32(second);
}

TEST(Model, OfOneInstanceHasNoName) {
  const Model model =
      build({Bytes(1).text("T"), Bytes(2).u32(0), Bytes(0x15).text("a\n"), Bytes(0x15).text("b"),
             Bytes('$').i32(1).text("S").u32(0), node(10, 0, 0), node(20, 1, 2), truss(7, 10, 20),
             Bytes(4).raw("CPS3    ").u32(8).u32(0).u32(10).u32(20).u32(10), truss(9, 20, 10),
             Bytes('M').u32(10).text("SURF")});
  EXPECT_EQ(model.title, "T");
  EXPECT_EQ(model.annotation, "a\nb");
  EXPECT_EQ(model.elementTypes, (std::vector<std::string>{"T2D2", "CPS3"}));
  ASSERT_EQ(model.instances.size(), 1u);
  const Instance& only = model.instances[0];
  EXPECT_EQ(only.name, "");
  EXPECT_FALSE(only.isRootAssembly);
  EXPECT_EQ(only.nodeLabels, (std::vector<std::int32_t>{10, 20}));
  EXPECT_EQ(only.coordinates, (std::vector<float>{0, 0, 1, 2}));
  EXPECT_EQ(only.elementLabels, (std::vector<std::int32_t>{7, 8, 9}));
  EXPECT_EQ(only.elementTypes, (std::vector<std::uint32_t>{0, 1, 0}));
  EXPECT_EQ(only.sectionNumbers, (std::vector<std::int32_t>{1, 0, 1}));
  EXPECT_EQ(only.connectivityOffsets, (std::vector<std::size_t>{0, 2, 5, 7}));
  EXPECT_EQ(only.connectivity, (std::vector<std::int32_t>{10, 20, 10, 20, 10, 20, 10}));
  EXPECT_EQ(only.rigidBodies.size(), 1u);
}

TEST(Model, OfSeveralInstancesTellsSectionGroupsFromInstances) {
  const Model model = build({Bytes(1).text("T"), Bytes(2).u32(0), Bytes('H').text("B"),
                             Bytes('$').i32(1).text("S").u32(0), Bytes('I'), Bytes('H').text("A"),
                             Bytes('$').i32(2).text("R").u32(0), Bytes('I'),
                             Bytes(0x11).text("M").f32(1).u32(0).u32(0), Bytes('H').text("A"),
                             node(1, 0, 0), truss(1, 1, 1), Bytes('H').text("B"),
                             Bytes('H').text("C"), node(1, 5, 5), Bytes('H').text("Assembly")});
  ASSERT_EQ(model.sections.size(), 2u);
  EXPECT_EQ(model.sections[0].instance, "B");
  EXPECT_EQ(model.sections[1].instance, "A");
  ASSERT_EQ(model.instances.size(), 4u);
  EXPECT_EQ(model.instances[0].nodeLabels.size(), 1u);
  EXPECT_EQ(model.instances[1].name, "B");
  EXPECT_TRUE(model.instances[1].nodeLabels.empty());
  EXPECT_EQ(model.instances[2].coordinates, (std::vector<float>{5, 5}));
  EXPECT_EQ(model.instances[3].name, "Assembly");
  EXPECT_TRUE(model.instances[3].isRootAssembly);
}

TEST(Model, RefusesRecordsOutOfPlaceAndSaysWhere) {
  const auto offsetOfError = [](const std::vector<Bytes>& records) -> std::int64_t {
    try {
      build(records);
      return -1;
    } catch (const MalformedRecord& error) {
      return static_cast<std::int64_t>(error.offset());
    }
  };
  EXPECT_EQ(offsetOfError({Bytes('I')}), 0);
  EXPECT_EQ(offsetOfError({node(1, 0, 0), Bytes(3).u32(2).f32(0)}), 15);
  EXPECT_EQ(offsetOfError({Bytes(2).u32(0), Bytes('}').u32(1)}), 7);
}

}  // namespace
}  // namespace odbs::client::test
