// SPDX-License-Identifier: BSD-3-Clause
// Analytic surfaces and rigid bodies.
#include "tests/model/model_fixture.h"
#include "tests/support/record_text.h"

namespace odbs::tests {
namespace {

constexpr int kSurfaceTag = 'L';
constexpr int kBodyTag = 'M';

class RigidBodies : public ModelTest {
 protected:
  // A profile of a start point and one line.
  odb_SequenceAnalyticSurfaceSegment profile() {
    odb_SequenceAnalyticSurfaceSegment segments;
    segments.append(odb_AnalyticSurfaceSegment("START", floatRows({{0, 0}})));
    segments.append(odb_AnalyticSurfaceSegment("LINE", floatRows({{1, 0.5F}})));
    return segments;
  }

  // Instance "R" of a part with reference nodes 4 and 5 and an analytic surface "SURF".
  odb_Instance& rigidInstance(const odb_SequenceAnalyticSurfaceSegment& segments) {
    odb_Part& rigid = part("RIGID", odb_Enum::TWO_D_PLANAR);
    rigid.addNodes(ints({4, 5}), floatRows({{0, 0}, {1, 0}}));
    odb_Instance& instance = this->instance("R", rigid);
    instance.AnalyticRigidSurf2DPlanar("SURF", segments, 0.25);
    return instance;
  }
};

TEST_F(RigidBodies, AnAnalyticSurfaceSendsItsSegments) {
  rigidInstance(profile());
  EXPECT_EQ(Records{record("L 'SURF' 'SEGMENTS' 0.25f 0 2 'START' 1 2 0f 0f 'LINE' 1 2 1f 0.5f")},
            streamed(kSurfaceTag));
}

TEST_F(RigidBodies, AnAnalyticSurfaceWithoutSegmentsEndsWithTheirCount) {
  rigidInstance(odb_SequenceAnalyticSurfaceSegment());
  EXPECT_EQ((Records{Payload('L').text("SURF").text("SEGMENTS").f32(0.25F).i32(0).i32(0)}),
            streamed(kSurfaceTag));
}

TEST_F(RigidBodies, ABodyIsItsReferenceNodeAndItsSurfaceAndWithoutOneOfThemPassedOver) {
  odb_Instance& instance = rigidInstance(profile());
  instance.RigidBody(instance.NodeSet("BARE", ints({5})));
  odb_embedded::addRigidBody(instance, instance.NodeSet("NONE", ints({})), instance);
  odb_embedded::addRigidBody(instance, instance.NodeSet("REF", ints({5, 4})), instance);
  const Records records = stream();
  EXPECT_EQ(Records{record("M 5 'SURF'")}, withTag(records, kBodyTag));
  EXPECT_EQ('L', records[records.size() - 2][0]);
}

TEST_F(RigidBodies, TheAssemblysBodiesAreSentWithTheNodesAloneToo) {
  odb_Instance& instance = rigidInstance(profile());
  odb_Assembly& assembly = odb_->rootAssembly();
  odb_SequenceString instanceNames;
  instanceNames.append("R");
  odb_embedded::addRigidBody(assembly, assembly.NodeSet("REF", instanceNames, rows({{5}})),
                             instance);
  EXPECT_EQ((Records{title("A title"), analysisKind(-1), node(4, {0, 0}), node(5, {1, 0}),
                     Payload('M').i32(5).text("SURF")}),
            stream('G'));
}

}  // namespace
}  // namespace odbs::tests
