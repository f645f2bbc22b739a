// SPDX-License-Identifier: BSD-3-Clause
// The decoders against bytes written by hand: each record kind, each cut short at every byte, and
// random bytes.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "client/describe.h"
#include "client/records/errors.h"
#include "tests/client/records.h"

namespace odbs::client::test {
namespace {

// A valid payload and what it must decode to: the kind, then "name=value" for each field.
struct Sample {
  RecordFamily family;
  const char* bytes;  // in the notation of record_text.h
  const char* shown;
  bool anyLength = false;  // cut short or longer, it may be another valid record
};

using F = RecordFamily;
constexpr bool kAnyLength = true;

// clang-format off
const Sample kSamples[] = {
    {F::kModel, "0x03 12 1.5f -2f 0f", "node label=12 coordinates=1.5;-2;0;", kAnyLength},
    {F::kModel, "0x03 12 1.5f -2f", "node label=12 coordinates=1.5;-2;", kAnyLength},
    {F::kModel, "0x04 <C3D4    > 9 3 1 2 3 4",
     "element type=C3D4 label=9 section=3 nodes=1;2;3;4;", kAnyLength},
    {F::kModel, "0x04 <C3D10MHT> 9 0 1 2",
     "element type=C3D10MHT label=9 section=0 nodes=1;2;", kAnyLength},
    {F::kModel, "0x04 <LONGNAME9> 9 2 77",
     "element type=LONGNAME9 label=9 section=2 nodes=77;", kAnyLength},
    {F::kModel, "0x04 <LONGNAME9012> 9 2 77",
     "element type=LONGNAME9012 label=9 section=2 nodes=77;", kAnyLength},
    {F::kModel, "0x04 <C3D20RHT> 999999999 2 0x41414141",
     "element type=C3D20RHT label=999999999 section=2 nodes=1094795585;", kAnyLength},
    {F::kModel, "0x04 <        > 9 2 7", "element type= label=9 section=2 nodes=7;", kAnyLength},
    {F::kModel, "0x04 <CONN3D2 > 5 1 2 10 11 0 0",
     "element type=CONN3D2 label=5 section=1 nodes=10;11;"},
    {F::kModel, "L 'SURF' 'CYLINDER' 0.5f 1 3 1f 2f 3f 2 'START' 1 2 4f 5f 'LINE' 0",
     "analytic surface name=SURF type=CYLINDER fillet_radius=0.5 local_coordinates=(1;2;3;) "
     "segments=START;LINE; segment_rows=1;0; segment_data=(4;5;)"},
    {F::kModel, "M 99 'SURF'", "rigid body reference_node=99 surface=SURF"},
    {F::kModel, "$ 1 '1-STEEL' -6 'STEEL' 0",
     "section number=1 name=1-STEEL section_kind=homogeneous solid material=STEEL"},
    {F::kModel, "$ 2 'P2' -5 0.25f 'AL' 0",
     "section number=2 name=P2 section_kind=homogeneous shell material=AL thickness=0.25"},
    {F::kModel, "$ 3 'M' -4 2.5f 0", "section number=3 name=M section_kind=point mass=2.5"},
    {F::kModel, "$ 4 'C' -3 'CONN-A' 'CSYS-1' '' 0",
     "section number=4 name=C section_kind=connector region=CONN-A csys1=CSYS-1 csys2="},
    {F::kModel, "$ 4 'C' -3 '' '' '' 0",
     "section number=4 name=C section_kind=connector region= csys1= csys2=", kAnyLength},
    {F::kModel, "$ 4 'C' -3 0 0", "section number=4 name=C section_kind=connector"},
    {F::kModel, "$ 5 'BEAM' 0", "section number=5 name=BEAM section_kind=other"},
    {F::kModel, "$ 6 'LAM' 2 1 3 'M1' 0 0.5f 45f 2 3 'M2' 0 0.25f -45f",
     "section number=6 name=LAM section_kind=composite layers=1;2; points=3;3; materials=M1;M2; "
     "thicknesses=0.5;0.25; angles=45;-45;"},
    {F::kModel, "0x11 'M' 7.5f 0 1", "material name=M density=7.5 acoustic=1"},
    {F::kModel, "0x11 'M' 0f 'ISOTROPIC' 210f 0.5f 0f 0f 0f 0f -1 0",
     "material name=M density=0 elastic=ISOTROPIC values=210;0.5;0;0;0;0; acoustic=0"},
    {F::kModel,
     "0x11 'M' 0f 'LAMINA' 1f 2f 3f 4f 5f 6f 0 1f 2f 3f 4f 5f 1 1f 2f 3f 4f 5f 6f 7f -1 0",
     "material name=M density=0 elastic=LAMINA values=1;2;3;4;5;6; fail_strain=1;2;3;4;5; "
     "fail_stress=1;2;3;4;5;6;7; acoustic=0"},
    {F::kModel, "0x01 'A plate'", "title title=A plate"},
    {F::kModel, "0x02 1", "analysis kind code=1 meaning=explicit"},
    {F::kModel, "0x15 'a\n'", "annotation line=a\n"},
    {F::kModel, "H 'PART-1-1'", "name name=PART-1-1"},
    {F::kModel, "I", "marker"},
    {F::kOther, "| 'Found'", "message text=Found"},
    {F::kOther, "} 4711", "process id process_id=4711"},
    {F::kUpgradeCheck, "| 1", "upgrade check upgrade_needed=1"},
    {F::kThroughput, "34 5 0 1 2", "throughput index=5 integers=3", kAnyLength},
    {F::kSets, "0x05 'LEFT'", "node set name=LEFT"},
    {F::kSets, "0x08 3 4", "node labels labels=3;4;", kAnyLength},
    {F::kSets, "10 3 1 4 6", "element faces labels=3;4; faces=1;6;", kAnyLength},
    {F::kSets, "11", "end of set"},
    {F::kSectionSummary, "$ 2 'P2' 1", "section summary number=2 name=P2 kind=shell"},
    {F::kNodalCatalogue, "12 1 0.5d 'Load\x01" "Pull'",
     "step number=1 total_time=0.5 name=Load description=Pull"},
    {F::kNodalCatalogue, "13 '*STATIC'", "procedure procedure=*STATIC"},
    {F::kElementCatalogue, "14 'S' 'Stress'", "field name=S description=Stress"},
    {F::kElementCatalogue, "16 'S11' 'S22'", "components components=S11;S22;", kAnyLength},
    {F::kNodalCatalogue, "15 3 0 0 0.25d 0d 1 1 'Inc 3'",
     "frame frame=3 domain=0 mode=0 value=0.25 frequency=0 complex=1 scalar=1 description=Inc 3"},
    {F::kElementCatalogue, "15 3 2 4 16d 0.125d 0 12 6 2 1 ''",
     "frame frame=3 domain=2 mode=4 value=16 frequency=0.125 complex=0 positions=12 invariants=6 "
     "tensor_kinds=2 section_points=1 description="},
    {F::kHistory, "0x32 1 0 2d 'Step-1' ''",
     "history step number=1 domain=0 total_time=2 name=Step-1 description="},
    {F::kHistory, "0x34 'Node 7' 'TIP' 1 7 0 0",
     "history region name=Node 7 set=TIP position=1 numbers=7;0;0;"},
    {F::kHistory, "0x36 'U1' '' 2 1", "history output name=U1 description= type=2 complex=1"},
    {F::kHistory, "0x38 0.5f", "history value value=0.5"},
    {F::kFieldValues, "% 16", "value type flag=16 meaning=vector"},
    {F::kFieldValues, "0x1E <C3D8R   > -1 -1",
     "block element_type=C3D8R section_point_field=-1 section_point=-1"},
    {F::kFieldValues, "39 1f 0f 0f 0f 1f 0f", "directions directions=1;0;0;0;1;0;"},
    {F::kFieldValues, "0x1F 7 -1 2 5f",
     "value element=7 third=-1 point=2 components=5;", kAnyLength},
    {F::kFieldValues, "0x21 7 3 5f", "value element=7 third=3 components=5;", kAnyLength},
    {F::kFieldValues, "0x20 7 3 5f", "value element=7 point=3 components=5;", kAnyLength},
    {F::kFieldValues, "0x22 7 5f 6f", "value element=7 components=5;6;", kAnyLength},
    {F::kFieldValues, "0x18 7 3 5f", "value third=7 point=3 components=5;", kAnyLength},
    {F::kFieldValues, "0x17 3 5f", "value point=3 components=5;", kAnyLength},
    {F::kFieldValues, "0x16 3 5f", "value third=3 components=5;", kAnyLength},
    {F::kFieldValues, "0x15 5f", "value components=5;", kAnyLength},
    {F::kNodalResults, "0x11 7 5f 6f", "nodal value node=7 components=5;6;", kAnyLength},
    {F::kNodalResults, "0x12 7 5f 6f", "nodal value node=7 components=5; conjugates=6;"},
    {F::kNodalResults, "0x39 7 5f", "rotation UR2 node=7 components=5;"},
    {F::kNodalResults, "0x50 7 5f 6f", "rotation UR3 node=7 components=5; conjugates=6;"},
    {F::kNodalResults, "34 7 0", "failed element element=7"},
};
// clang-format on

void show(std::ostream& out, const std::vector<float>& row) {
  out << "(";
  for (const float x : row) out << x << ";";
  out << ")";
}
template <typename Scalar>
void show(std::ostream& out, const Scalar& value) {
  out << value << ";";
}

std::string shown(const Value& value) {
  std::ostringstream out;
  std::visit(
      [&](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_arithmetic_v<Held> || std::is_same_v<Held, std::string>) {
          out << held;
        } else {
          for (const auto& item : held) show(out, item);
        }
      },
      value);
  return out.str();
}

std::string shown(const Description& description) {
  std::string text = description.kind;
  for (const Field& field : description.fields) {
    text += std::string(" ") + field.name + "=" + shown(field.value);
  }
  return text;
}

TEST(Decoder, DecodesEachRecordKind) {
  for (const Sample& sample : kSamples) {
    EXPECT_EQ(shown(describe(recordOf(record(sample.bytes)), sample.family)), sample.shown);
  }
}

TEST(Decoder, ShowsTheBytesOfARecordThatItDoesNotKnow) {
  EXPECT_EQ(shown(describe(recordOf("\x03\x01\xfe"), F::kOther)), "unknown body=01 fe");
}

// The bytes are copied to a block of exactly their size, so that the address sanitizer sees a read
// past the end.
bool decodes(const std::string& payload, RecordFamily family, std::uint64_t offset = 0) {
  const std::vector<unsigned char> exact(payload.begin(), payload.end());
  Record record;
  record.tag = exact[0];
  record.body = exact.data() + 1;
  record.size = static_cast<std::uint32_t>(exact.size() - 1);
  record.offset = offset;
  try {
    describe(record, family);
    return true;
  } catch (const MalformedRecord& error) {
    EXPECT_EQ(error.offset(), offset);
    return false;
  }
}

TEST(Decoder, RefusesEachRecordKindCutShortOrTooLong) {
  for (const Sample& sample : kSamples) {
    const std::string payload = record(sample.bytes);
    for (std::size_t n = 1; n < payload.size(); ++n) {
      const bool decoded = decodes(payload.substr(0, n), sample.family, 1000 + n);
      EXPECT_FALSE(decoded && !sample.anyLength) << sample.bytes << " cut to " << n;
    }
    // A byte more makes an element's name a byte longer, and nothing else valid.
    if (sample.anyLength && payload[0] == 4 && sample.family == F::kModel) continue;
    // Upgrade needed and a byte more is a message of one character.
    if (sample.family == F::kUpgradeCheck) continue;
    EXPECT_FALSE(decodes(payload + '\x01', sample.family)) << sample.bytes;
  }
}

TEST(Decoder, SurvivesRandomAndDamagedBytes) {
  std::mt19937 random(20240607);
  int nRefused = 0;
  constexpr int kRounds = 200000;
  for (int round = 0; round < kRounds; ++round) {
    const Sample& sample = kSamples[random() % std::size(kSamples)];
    std::string payload = record(sample.bytes);
    if (round % 2 == 0) {
      payload.resize(1 + random() % 80);
      for (std::size_t i = 1; i < payload.size(); ++i) payload[i] = static_cast<char>(random());
    } else {
      for (int nFlips = 0; nFlips < 3; ++nFlips) {
        payload[random() % payload.size()] = static_cast<char>(random());
      }
    }
    if (!decodes(payload, sample.family, static_cast<std::uint64_t>(round))) ++nRefused;
  }
  EXPECT_GT(nRefused, kRounds / 4);
  EXPECT_LT(nRefused, kRounds);
}

TEST(Decoder, RefusesWrongContentsOfRightLength) {
  const std::pair<RecordFamily, const char*> kWrong[] = {
      {F::kModel, "$ 1 'A' -2 'M' 0"},    // no such kinds of section
      {F::kModel, "$ 1 'A' -12 'M' 0"},   //
      {F::kModel, "$ 1 'A' -6 'M' 1"},    // closed by 0 always
      {F::kModel, "$ 1 'A' 2147483647"},  // more layers, rows, nodes than there are bytes
      {F::kModel, "L 'S' 'T' 0f 0xFFFFFFFF 0"},
      {F::kModel, "0x04 <CONN3D2 > 5 1 0x80000001 1 0"},
      {F::kModel, "0x04 <CONN3D2 > 5 1 1 10 7"},  // lengths of empty names are 0
      {F::kModel, "0x11 'M' 0f 0 2"},             // flags are 0 or 1
      {F::kThroughput, "34 0 0 2"},               // counts without a gap
      {F::kNodalResults, "34 7 1"}};
  for (const auto& [family, bytes] : kWrong) EXPECT_FALSE(decodes(record(bytes), family)) << bytes;
}

}  // namespace
}  // namespace odbs::client::test
