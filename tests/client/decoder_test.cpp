// SPDX-License-Identifier: BSD-3-Clause
// The decoders against bytes written by hand: each record kind, each cut short at every byte, and
// random bytes.
#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "base/bytes.h"
#include "client/describe.h"
#include "client/model_records.h"
#include "client/small_records.h"
#include "tests/client/bytes.h"

namespace odbs::client::test {
namespace {

const RecordFamily kModel = RecordFamily::kModel;

// A valid payload and the fields that it must decode to.
struct Sample {
  const char* name;
  RecordFamily family;
  Bytes bytes;
  const char* kind;
  std::vector<std::string> fields;  // "name=value" in the order of the description
  bool anyLength = false;           // cut short, it may be another valid record
};

std::vector<Sample> meshSamples() {
  return {
      {"spatial node",
       kModel,
       Bytes(3).u32(12).f32(1.5f).f32(-2).f32(0),
       "node",
       {"label=12", "coordinates=1.5;-2;0;"},
       true},
      {"planar node",
       kModel,
       Bytes(3).u32(12).f32(1.5f).f32(-2),
       "node",
       {"label=12", "coordinates=1.5;-2;"},
       true},
      {"tetrahedron",
       kModel,
       Bytes(4).raw("C3D4    ").u32(9).u32(3).u32(1).u32(2).u32(3).u32(4),
       "element",
       {"type=C3D4", "label=9", "section=3", "nodes=1;2;3;4;"},
       true},
      {"element of an 8-character name",
       kModel,
       Bytes(4).raw("C3D10MHT").u32(9).u32(0).u32(1).u32(2),
       "element",
       {"type=C3D10MHT", "label=9", "section=0", "nodes=1;2;"},
       true},
      {"element of a 9-character name",
       kModel,
       Bytes(4).raw("LONGNAME9").u32(9).u32(2).u32(77),
       "element",
       {"type=LONGNAME9", "label=9", "section=2", "nodes=77;"},
       true},
      {"element of a 12-character name",
       kModel,
       Bytes(4).raw("LONGNAME9012").u32(9).u32(2).u32(77),
       "element",
       {"type=LONGNAME9012", "label=9", "section=2", "nodes=77;"},
       true},
      {"element of a great label",
       kModel,
       Bytes(4).raw("C3D20RHT").u32(999999999).u32(2).u32(0x41414141),
       "element",
       {"type=C3D20RHT", "label=999999999", "section=2", "nodes=1094795585;"},
       true},
      {"element without a type name",
       kModel,
       Bytes(4).raw("        ").u32(9).u32(2).u32(7),
       "element",
       {"type=", "label=9", "section=2", "nodes=7;"},
       true},
      {"connector",
       kModel,
       Bytes(4).raw("CONN3D2 ").u32(5).u32(1).u32(2).u32(10).u32(11).u32(0).u32(0),
       "element",
       {"type=CONN3D2", "label=5", "section=1", "nodes=10;11;"}},
      {"analytic surface",
       kModel,
       Bytes('L')
           .text("SURF")
           .text("CYLINDER")
           .f32(0.5f)
           .u32(1)
           .u32(3)
           .f32(1)
           .f32(2)
           .f32(3)
           .u32(2)
           .text("START")
           .u32(1)
           .u32(2)
           .f32(4)
           .f32(5)
           .text("LINE")
           .u32(0),
       "analytic surface",
       {"name=SURF", "type=CYLINDER", "fillet_radius=0.5", "local_coordinates=(1;2;3;)",
        "segments=START;LINE;", "segment_rows=1;0;", "segment_data=(4;5;)"}},
      {"rigid body",
       kModel,
       Bytes('M').u32(99).text("SURF"),
       "rigid body",
       {"reference_node=99", "surface=SURF"}},
  };
}

std::vector<Sample> sectionSamples() {
  return {
      {"homogeneous solid",
       kModel,
       Bytes('$').i32(1).text("1-STEEL").i32(-6).text("STEEL").u32(0),
       "section",
       {"number=1", "name=1-STEEL", "section_kind=homogeneous solid", "material=STEEL"}},
      {"homogeneous shell",
       kModel,
       Bytes('$').i32(2).text("P2").i32(-5).f32(0.25f).text("AL").u32(0),
       "section",
       {"number=2", "name=P2", "section_kind=homogeneous shell", "material=AL", "thickness=0.25"}},
      {"point section",
       kModel,
       Bytes('$').i32(3).text("M").i32(-4).f32(2.5f).u32(0),
       "section",
       {"number=3", "name=M", "section_kind=point", "mass=2.5"}},
      {"connector section",
       kModel,
       Bytes('$').i32(4).text("C").i32(-3).text("CONN-A").text("CSYS-1").text("").u32(0),
       "section",
       {"number=4", "name=C", "section_kind=connector", "region=CONN-A", "csys1=CSYS-1", "csys2="}},
      {"connector section of empty texts",
       kModel,
       Bytes('$').i32(4).text("C").i32(-3).text("").text("").text("").u32(0),
       "section",
       {"number=4", "name=C", "section_kind=connector", "region=", "csys1=", "csys2="},
       true},
      {"connector section without orientation",
       kModel,
       Bytes('$').i32(4).text("C").i32(-3).u32(0).u32(0),
       "section",
       {"number=4", "name=C", "section_kind=connector"}},
      {"other section",
       kModel,
       Bytes('$').i32(5).text("BEAM").u32(0),
       "section",
       {"number=5", "name=BEAM", "section_kind=other"}},
      {"composite",
       kModel,
       Bytes('$')
           .i32(6)
           .text("LAM")
           .u32(2)
           .u32(1)
           .u32(3)
           .text("M1")
           .u32(0)
           .f32(0.5f)
           .f32(45)
           .u32(2)
           .u32(3)
           .text("M2")
           .u32(0)
           .f32(0.25f)
           .f32(-45),
       "section",
       {"number=6", "name=LAM", "section_kind=composite", "layers=1;2;", "points=3;3;",
        "materials=M1;M2;", "thicknesses=0.5;0.25;", "angles=45;-45;"}},
      {"bare material",
       kModel,
       Bytes(0x11).text("M").f32(7.5f).u32(0).u32(1),
       "material",
       {"name=M", "density=7.5", "acoustic=1"}},
      {"elastic material",
       kModel,
       Bytes(0x11)
           .text("M")
           .f32(0)
           .text("ISOTROPIC")
           .f32(210)
           .f32(0.5f)
           .f32(0)
           .f32(0)
           .f32(0)
           .f32(0)
           .i32(-1)
           .u32(0),
       "material",
       {"name=M", "density=0", "elastic=ISOTROPIC", "values=210;0.5;0;0;0;0;", "acoustic=0"}},
      {"material with failure data",
       kModel,
       Bytes(0x11)
           .text("M")
           .f32(0)
           .text("LAMINA")
           .f32(1)
           .f32(2)
           .f32(3)
           .f32(4)
           .f32(5)
           .f32(6)
           .u32(0)
           .f32(1)
           .f32(2)
           .f32(3)
           .f32(4)
           .f32(5)
           .u32(1)
           .f32(1)
           .f32(2)
           .f32(3)
           .f32(4)
           .f32(5)
           .f32(6)
           .f32(7)
           .i32(-1)
           .u32(0),
       "material",
       {"name=M", "density=0", "elastic=LAMINA", "values=1;2;3;4;5;6;", "fail_strain=1;2;3;4;5;",
        "fail_stress=1;2;3;4;5;6;7;", "acoustic=0"}},
  };
}

std::vector<Sample> smallSamples() {
  return {
      {"title", kModel, Bytes(1).text("A plate"), "title", {"title=A plate"}},
      {"analysis kind", kModel, Bytes(2).i32(1), "analysis kind", {"code=1", "meaning=explicit"}},
      {"annotation", kModel, Bytes(0x15).text("a\n"), "annotation", {"line=a\n"}},
      {"name", kModel, Bytes('H').text("PART-1-1"), "name", {"name=PART-1-1"}},
      {"marker", kModel, Bytes('I'), "marker", {}},
      {"message", RecordFamily::kOther, Bytes('|').text("Found"), "message", {"text=Found"}},
      {"process id", RecordFamily::kOther, Bytes('}').u32(4711), "process id", {"process_id=4711"}},
      {"upgrade needed",
       RecordFamily::kUpgradeCheck,
       Bytes('|').u32(1),
       "upgrade check",
       {"upgrade_needed=1"}},
      {"throughput",
       RecordFamily::kThroughput,
       Bytes('"').u32(5).u32(0).u32(1).u32(2),
       "throughput",
       {"index=5", "integers=3"},
       true},
  };
}

// A double, lowest byte first.
std::string f64(double value) {
  std::string bytes(8, '\0');
  putF64(reinterpret_cast<unsigned char*>(bytes.data()), value);
  return bytes;
}

std::vector<Sample> setAndCatalogueSamples() {
  const RecordFamily kSets = RecordFamily::kSets;
  const RecordFamily kNodal = RecordFamily::kNodalCatalogue;
  const RecordFamily kElement = RecordFamily::kElementCatalogue;
  return {
      {"node set", kSets, Bytes(5).text("LEFT"), "node set", {"name=LEFT"}},
      {"node labels", kSets, Bytes(8).u32(3).u32(4), "node labels", {"labels=3;4;"}, true},
      {"faces",
       kSets,
       Bytes(10).u32(3).u32(1).u32(4).u32(6),
       "element faces",
       {"labels=3;4;", "faces=1;6;"},
       true},
      {"end of set", kSets, Bytes(11), "end of set", {}},
      {"summary",
       RecordFamily::kSectionSummary,
       Bytes('$').u32(2).text("P2").u32(1),
       "section summary",
       {"number=2", "name=P2", "kind=shell"}},
      {"step",
       kNodal,
       Bytes(12).u32(1).raw(f64(0.5)).text("Load\x01"
                                           "Pull"),
       "step",
       {"number=1", "total_time=0.5", "name=Load", "description=Pull"}},
      {"procedure", kNodal, Bytes(13).text("*STATIC"), "procedure", {"procedure=*STATIC"}},
      {"field",
       kElement,
       Bytes(14).text("S").text("Stress"),
       "field",
       {"name=S", "description=Stress"}},
      {"components",
       kElement,
       Bytes(16).text("S11").text("S22"),
       "components",
       {"components=S11;S22;"},
       true},
      {"nodal frame",
       kNodal,
       Bytes(15).u32(3).u32(0).u32(0).raw(f64(0.25)).raw(f64(0)).u32(1).u32(1).text("Inc 3"),
       "frame",
       {"frame=3", "domain=0", "mode=0", "value=0.25", "frequency=0", "complex=1", "scalar=1",
        "description=Inc 3"}},
      {"element frame",
       kElement,
       Bytes(15)
           .u32(3)
           .u32(2)
           .u32(4)
           .raw(f64(16))
           .raw(f64(0.125))
           .u32(0)
           .u32(12)
           .u32(6)
           .u32(2)
           .u32(1)
           .text(""),
       "frame",
       {"frame=3", "domain=2", "mode=4", "value=16", "frequency=0.125", "complex=0", "positions=12",
        "invariants=6", "tensor_kinds=2", "section_points=1", "description="}},
  };
}

std::vector<Sample> valueSamples() {
  const RecordFamily kHistory = RecordFamily::kHistory;
  const RecordFamily kValues = RecordFamily::kFieldValues;
  const RecordFamily kNodalResults = RecordFamily::kNodalResults;
  return {
      {"history step",
       kHistory,
       Bytes('2').u32(1).u32(0).raw(f64(2)).text("Step-1").text(""),
       "history step",
       {"number=1", "domain=0", "total_time=2", "name=Step-1", "description="}},
      {"history region",
       kHistory,
       Bytes('4').text("Node 7").text("TIP").u32(1).u32(7).u32(0).u32(0),
       "history region",
       {"name=Node 7", "set=TIP", "position=1", "numbers=7;0;0;"}},
      {"history output",
       kHistory,
       Bytes('6').text("U1").text("").u32(2).u32(1),
       "history output",
       {"name=U1", "description=", "type=2", "complex=1"}},
      {"history value", kHistory, Bytes('8').f32(0.5f), "history value", {"value=0.5"}},
      {"value type", kValues, Bytes('%').u32(16), "value type", {"flag=16", "meaning=vector"}},
      {"block",
       kValues,
       Bytes(0x1E).raw("C3D8R   ").i32(-1).i32(-1),
       "block",
       {"element_type=C3D8R", "section_point_field=-1", "section_point=-1"}},
      {"directions",
       kValues,
       Bytes('\'').f32(1).f32(0).f32(0).f32(0).f32(1).f32(0),
       "directions",
       {"directions=1;0;0;0;1;0;"}},
      {"value of all labels",
       kValues,
       Bytes(0x1F).u32(7).i32(-1).u32(2).f32(5),
       "value",
       {"element=7", "third=-1", "point=2", "components=5;"},
       true},
      {"value of element and third",
       kValues,
       Bytes(0x21).u32(7).u32(3).f32(5),
       "value",
       {"element=7", "third=3", "components=5;"},
       true},
      {"value of element and point",
       kValues,
       Bytes(0x20).u32(7).u32(3).f32(5),
       "value",
       {"element=7", "point=3", "components=5;"},
       true},
      {"value of element",
       kValues,
       Bytes(0x22).u32(7).f32(5).f32(6),
       "value",
       {"element=7", "components=5;6;"},
       true},
      {"value of third and point",
       kValues,
       Bytes(0x18).u32(7).u32(3).f32(5),
       "value",
       {"third=7", "point=3", "components=5;"},
       true},
      {"value of point",
       kValues,
       Bytes(0x17).u32(3).f32(5),
       "value",
       {"point=3", "components=5;"},
       true},
      {"value of third",
       kValues,
       Bytes(0x16).u32(3).f32(5),
       "value",
       {"third=3", "components=5;"},
       true},
      {"value of no label", kValues, Bytes(0x15).f32(5), "value", {"components=5;"}, true},
      {"nodal value",
       kNodalResults,
       Bytes(0x11).u32(7).f32(5).f32(6),
       "nodal value",
       {"node=7", "components=5;6;"},
       true},
      {"complex nodal value",
       kNodalResults,
       Bytes(0x12).u32(7).f32(5).f32(6),
       "nodal value",
       {"node=7", "components=5;", "conjugates=6;"}},
      {"rotation",
       kNodalResults,
       Bytes(0x39).u32(7).f32(5),
       "rotation UR2",
       {"node=7", "components=5;"}},
      {"complex rotation",
       kNodalResults,
       Bytes(0x50).u32(7).f32(5).f32(6),
       "rotation UR3",
       {"node=7", "components=5;", "conjugates=6;"}},
      {"failed element", kNodalResults, Bytes('"').u32(7).u32(0), "failed element", {"element=7"}},
  };
}

std::vector<Sample> samples() {
  std::vector<Sample> all;
  for (const std::vector<Sample>& some : {meshSamples(), sectionSamples(), smallSamples(),
                                          setAndCatalogueSamples(), valueSamples()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

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

TEST(Decoder, DecodesEachRecordKind) {
  for (const Sample& sample : samples()) {
    const Description got = describe(recordOf(sample.bytes.payload()), sample.family);
    EXPECT_EQ(got.kind, sample.kind) << sample.name;
    std::vector<std::string> fields;
    for (const Field& field : got.fields) fields.push_back(field.name + ("=" + shown(field.value)));
    EXPECT_EQ(fields, sample.fields) << sample.name;
  }
}

TEST(Decoder, ShowsTheBytesOfARecordThatItDoesNotKnow) {
  const Description got = describe(recordOf("\x03\x01\xfe"), RecordFamily::kOther);
  EXPECT_EQ(got.kind, "unknown");
  EXPECT_EQ(shown(got.fields.at(0).value), "01 fe");
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
  for (const Sample& sample : samples()) {
    const std::string payload = sample.bytes.payload();
    for (std::size_t n = 1; n < payload.size(); ++n) {
      const bool decoded = decodes(payload.substr(0, n), sample.family, 1000 + n);
      EXPECT_FALSE(decoded && !sample.anyLength) << sample.name << " cut to " << n;
    }
    // A byte more makes an element's name a byte longer, and nothing else valid.
    if (sample.kind == std::string("element") && sample.anyLength) continue;
    // Upgrade needed and a byte more is a message of one character.
    if (sample.family == RecordFamily::kUpgradeCheck) continue;
    EXPECT_FALSE(decodes(payload + '\x01', sample.family)) << sample.name;
  }
}

TEST(Decoder, SurvivesRandomAndDamagedBytes) {
  std::mt19937 random(20240607);
  const std::vector<Sample> all = samples();
  int nRefused = 0;
  constexpr int kRounds = 200000;
  for (int round = 0; round < kRounds; ++round) {
    const Sample& sample = all[random() % all.size()];
    std::string payload = sample.bytes.payload();
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
  const std::pair<const char*, Bytes> kWrong[] = {
      {"unknown kind -2", Bytes('$').i32(1).text("A").i32(-2).text("M").u32(0)},
      {"unknown kind -12", Bytes('$').i32(1).text("A").i32(-12).text("M").u32(0)},
      {"closing integer", Bytes('$').i32(1).text("A").i32(-6).text("M").u32(1)},
      {"too many layers", Bytes('$').i32(1).text("A").i32(2147483647)},
      {"too many rows", Bytes('L').text("S").text("T").f32(0).u32(0xFFFFFFFF).u32(0)},
      {"acoustic flag", Bytes(0x11).text("M").f32(0).u32(0).u32(2)},
      {"connector's zeros", Bytes(4).raw("CONN3D2 ").u32(5).u32(1).u32(1).u32(10).u32(7)},
      {"connector's count", Bytes(4).raw("CONN3D2 ").u32(5).u32(1).u32(0x80000001).u32(1).u32(0)},
  };
  for (const auto& [name, bytes] : kWrong) EXPECT_FALSE(decodes(bytes.payload(), kModel)) << name;
  EXPECT_FALSE(decodes(Bytes('"').u32(0).u32(0).u32(2).payload(), RecordFamily::kThroughput));
  EXPECT_FALSE(decodes(Bytes('"').u32(7).u32(1).payload(), RecordFamily::kNodalResults));
}

}  // namespace
}  // namespace odbs::client::test
