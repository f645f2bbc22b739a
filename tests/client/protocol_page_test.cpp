// SPDX-License-Identifier: BSD-3-Clause
// The worked example of docs/protocol.md is what the decoder understands: a page that shows wrong
// bytes would mislead whoever writes a parent from it.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "client/model.h"
#include "tests/client/protocol_page.h"

namespace odbs::client::test {
namespace {

TEST(ProtocolPage, ShowsAReplyThatDecodesToWhatItsMarginSays) {
  const std::string bytes = replyOfProtocolPage();
  ASSERT_EQ(bytes.size(), 169u);
  RecordStream stream;
  std::size_t room = 0;
  std::memcpy(stream.space(&room), bytes.data(), bytes.size());
  stream.filled(bytes.size());
  ModelBuilder builder;
  Record record;
  while (stream.take(record) && record.tag != kAcknowledgementTag) builder.add(record);
  EXPECT_EQ(record.tag, kAcknowledgementTag);
  EXPECT_EQ(stream.pending(), 0u);

  const Model model = builder.finish();
  EXPECT_EQ(model.title, "Rod");
  ASSERT_EQ(model.sections.size(), 1u);
  EXPECT_EQ(model.sections[0].kind, SectionKind::kTruss);
  EXPECT_EQ(model.sections[0].material, "STEEL");
  ASSERT_EQ(model.materials.size(), 1u);
  EXPECT_EQ(model.materials[0].density, 7.8e-9f);
  EXPECT_EQ(model.materials[0].elastic->values, (std::array<float, 6>{210000, 0.3f, 0, 0, 0, 0}));
  ASSERT_EQ(model.instances.size(), 1u);
  EXPECT_EQ(model.instances[0].coordinates, (std::vector<float>{0, 0, 100, 0}));
  EXPECT_EQ(model.instances[0].connectivity, (std::vector<std::int32_t>{1, 2}));
}

}  // namespace
}  // namespace odbs::client::test
