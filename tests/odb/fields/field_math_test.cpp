// SPDX-License-Identifier: BSD-3-Clause
// Arithmetic, scalar fields, envelopes, other coordinate systems.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>

#include <cmath>

namespace odbs::test {
namespace {

using E = odb_Enum;

class FieldMath : public testing::Test {
 protected:
  FieldMath() {
    odb_SequenceInvariant invariants;
    invariants.append(E::MISES);
    invariants.append(E::MAX_PRINCIPAL);
    odb_SequenceInvariant magnitude;
    magnitude.append(E::MAGNITUDE);
    odb_Frame frame = model_.step().Frame(1, 1.0F);
    odb_FieldOutput& s =
        frame.FieldOutput("S", "Stress", E::TENSOR_3D_FULL, odb_SequenceString(), invariants);
    s.addData(E::CENTROID, model_.instance(), ints({10, 20}),
              rows({{90, 0, 0, 0, 0, 0}, {0, 0, 0, 10, 0, 0}}));
    odb_FieldOutput& t = frame.FieldOutput("NT11", "Temperature", E::SCALAR);
    t.addData(E::NODAL, model_.instance(), ints({1, 2}), rows({{4}, {9}}));
    odb_FieldOutput& u =
        frame.FieldOutput("U", "Displacement", E::VECTOR, odb_SequenceString(), magnitude);
    u.addData(E::NODAL, model_.instance(), ints({1, 2}), rows({{1, 0, 0}, {0, 2, 3}}),
              odb_SectionPoint(), odb_SequenceSequenceFloat(), rows({{0, 1, 0}, {4, 0, 0}}));
    s_ = s;
    t_ = t;
    u_ = u;
  }
  static float at(const odb_FieldOutput& field, int i, int k = 0) {
    return field.values(i).data()[k];
  }
  ResultsModel model_;
  odb_FieldOutput s_, t_, u_;
};

TEST_F(FieldMath, ScalarFieldsHoldInvariantsAndComponents) {
  const odb_FieldOutput mises = s_.getScalarField(E::MISES);
  EXPECT_EQ(mises.type(), E::SCALAR);
  EXPECT_FLOAT_EQ(at(mises, 0), 90);
  EXPECT_FLOAT_EQ(at(mises, 1), 10 * std::sqrt(3.0F));
  EXPECT_EQ(mises.values(1).elementLabel(), 20);
  EXPECT_FLOAT_EQ(at(s_.getScalarField(E::MAX_PRINCIPAL), 1), 10);
  EXPECT_FLOAT_EQ(at(s_.getScalarField("S12"), 1), 10);
  EXPECT_FLOAT_EQ(at(u_.getScalarField(E::MAGNITUDE), 1), std::sqrt(13.0F));
  EXPECT_FALSE(u_.getScalarField("U2").isComplex());
  EXPECT_THROW(s_.getScalarField(E::TRESCA), odb_Exception);
  EXPECT_THROW(s_.getScalarField("S99"), odb_Exception);
}

TEST_F(FieldMath, OperatorsActComponentByComponent) {
  EXPECT_FLOAT_EQ(at(s_ + s_, 0), 180);
  EXPECT_FLOAT_EQ(at(s_ * 2 - s_, 1, 3), 10);
  EXPECT_FLOAT_EQ(at(-t_ / 2, 0), -2);
  EXPECT_FLOAT_EQ(at(1 / t_, 1), 1.0F / 9);
  EXPECT_FLOAT_EQ(at(10 - t_, 1), 1);
  EXPECT_FLOAT_EQ(at(t_ * u_, 1, 2), 27);
  EXPECT_EQ((t_ * u_).type(), E::VECTOR);
  EXPECT_TRUE((t_ * u_).isComplex());
  EXPECT_THROW(s_ + t_, odb_Exception);
  // Invariants follow the new components.
  EXPECT_FLOAT_EQ((s_ * 2).values(0).mises(), 180);
}

TEST_F(FieldMath, FunctionsActComponentByComponent) {
  EXPECT_FLOAT_EQ(at(sqrt(t_), 1), 3);
  EXPECT_FLOAT_EQ(at(abs(-t_), 0), 4);
  EXPECT_FLOAT_EQ(at(power(t_, 0.5F), 0), 2);
  EXPECT_FLOAT_EQ(at(exp10(log10(t_)), 1), 9);
  EXPECT_FLOAT_EQ(at(log(exp(t_)), 0), 4);
  EXPECT_FLOAT_EQ(at(radianToDegree(degreeToRadian(t_)), 0), 4);
  EXPECT_FLOAT_EQ(at(asin(sin(t_ / 9)), 0), 4.0F / 9);
  EXPECT_FLOAT_EQ(at(acos(cos(t_ / 9)), 1), 1);
  EXPECT_FLOAT_EQ(at(atan(tan(t_ / 9)), 1), 1);
  EXPECT_TRUE(std::isnan(at(sqrt(-t_), 0)));
}

TEST_F(FieldMath, ComplexFieldsAreComplexNumbers) {
  EXPECT_FLOAT_EQ(at(complexMagnitude(u_), 1, 0), 4);
  EXPECT_FLOAT_EQ(at(complexPhase(u_), 0, 1), std::acos(0.0F));
  EXPECT_FLOAT_EQ(at(complexReal(u_), 1, 2), 3);
  EXPECT_FLOAT_EQ(at(complexImag(u_), 1, 0), 4);
  EXPECT_FALSE(complexImag(u_).isComplex());
  // (4 i) * (4 i) = -16.
  EXPECT_FLOAT_EQ(at(u_ * u_, 1, 0), -16);
  EXPECT_FLOAT_EQ((u_ + u_).values(1).conjugateData()[0], 8);
}

TEST_F(FieldMath, EnvelopesGiveTheWinnerAndItsIndex) {
  odb_SequenceFieldOutput fields;
  fields.append(t_);
  fields.append(t_ * 0.5);
  fields.append(13 - t_);
  const odb_SequenceFieldOutput most = maxEnvelope(fields);
  ASSERT_EQ(most.size(), 2);
  EXPECT_FLOAT_EQ(at(most[0], 0), 9);
  EXPECT_FLOAT_EQ(at(most[1], 0), 2);
  EXPECT_FLOAT_EQ(at(most[0], 1), 9);
  EXPECT_FLOAT_EQ(at(most[1], 1), 0);
  EXPECT_FLOAT_EQ(at(minEnvelope(fields)[1], 0), 1);
  odb_SequenceFieldOutput stresses;
  stresses.append(s_);
  stresses.append(s_ * -3);
  EXPECT_FLOAT_EQ(at(maxEnvelope(stresses, E::MISES)[0], 0), -270);
  EXPECT_FLOAT_EQ(at(maxEnvelope(stresses, odb_String("S11"))[0], 0), 90);
  EXPECT_THROW(maxEnvelope(odb_SequenceFieldOutput()), odb_Exception);
}

TEST_F(FieldMath, DoublesStayDoubleInArithmetic) {
  odb_FieldOutput& d = model_.step().frames(0).FieldOutput("D", "", E::SCALAR);
  d.addData(E::NODAL, model_.instance(), ints({1, 2}), doubleRows({{1.0 / 3}, {1}}));
  EXPECT_DOUBLE_EQ((d * 3).values(0).dataDouble()[0], 1);
  EXPECT_EQ((t_ + d).values(0).precision(), E::DOUBLE_PRECISION);
}

class Transformed : public FieldMath {
 protected:
  const odb_DatumCsys& turnedCsys(const char* name, E::odb_DatumCsysTypeEnum type) {
    return model_.odb->rootAssembly().DatumCsysByThreePoints(name, type, floats({0, 0, 0}),
                                                             floats({0, 1, 0}), floats({-1, 0, 0}));
  }
  // Its origin is node 2, its pole the global x, and its x the global y.
  const odb_DatumCsys& sphereAboutX() {
    return model_.odb->rootAssembly().DatumCsysByThreePoints(
        "SPHERE", E::SPHERICAL, floats({1, 0, 0}), floats({1, 1, 0}), floats({1, 0, 1}));
  }
  odb_FieldOutput nodal(const char* name, const std::vector<int>& nodes,
                        const std::vector<std::vector<float>>& values) {
    odb_FieldOutput field = model_.step().frames(0).FieldOutput(name, "", E::VECTOR);
    field.addData(E::NODAL, model_.instance(), ints(nodes), rows(values));
    return field;
  }
  static void expectAt(const odb_FieldOutput& field, int i, const std::vector<float>& expected) {
    for (std::size_t k = 0; k < expected.size(); ++k) {
      EXPECT_NEAR(at(field, i, static_cast<int>(k)), expected[k], 1e-5) << k;
    }
  }
};

TEST_F(Transformed, CartesianSystemsTurnVectorsAndTensors) {
  // x along the global y, y along -x.
  const odb_DatumCsys& turned = turnedCsys("T", E::CARTESIAN);
  const odb_FieldOutput u = u_.getTransformedField(turned);
  expectAt(u, 0, {0, -1});
  EXPECT_NEAR(at(u, 1, 0), 2, 1e-6);
  EXPECT_NEAR(u.values(1).conjugateData()[1], -4, 1e-6);
  const odb_FieldOutput s = s_.getTransformedField(turned);
  EXPECT_NEAR(at(s, 0, 1), 90, 1e-4);
  EXPECT_NEAR(at(s, 1, 3), -10, 1e-5);
  EXPECT_TRUE(s.hasOrientation());
  EXPECT_NEAR(s.values(0).mises(), 90, 1e-4);
  EXPECT_NEAR(s.values(0).localCoordSystem()[0][1], 1, 1e-6);
  // Turning a turned field starts from its own system.
  EXPECT_NEAR(at(s.getTransformedField(turned), 0, 1), 90, 1e-4);
  EXPECT_THROW(t_.getTransformedField(turned), odb_Exception);
}

TEST_F(Transformed, CylindricalDirectionsDependOnTheDeformedPlace) {
  const odb_DatumCsys& axes = model_.odb->rootAssembly().DatumCsysByThreePoints(
      "C", E::CYLINDRICAL, floats({0, 0, 0}), floats({1, 0, 0}), floats({0, 1, 0}));
  // Node 3 is at (1, 1, 0).
  const odb_FieldOutput v = nodal("V", {3}, {{1, 1, 5}});
  expectAt(v.getTransformedField(axes), 0, {std::sqrt(2.0F), 0, 5});
  expectAt(v.getTransformedField(axes, nodal("D", {3}, {{-1, 0, 0}})), 0, {1, -1});
}

TEST_F(Transformed, SphericalDirectionsAreRadialCircumferentialMeridional) {
  const odb_DatumCsys& sphere = sphereAboutX();
  // Nodes 3 and 8 are at (1, 1, 0) and (0, 1, 1): directions y, z, x and (-1, 1, 1), (0, -1, 1),
  // (2, 1, 1).
  const odb_FieldOutput turned =
      nodal("V", {3, 8}, {{1, 2, 3}, {1, 2, 3}}).getTransformedField(sphere);
  expectAt(turned, 0, {2, 3, 1});
  expectAt(turned, 1, {4 / std::sqrt(3.0F), 1 / std::sqrt(2.0F), 7 / std::sqrt(6.0F)});
  // The middle of element 10 has the directions of node 8: r r + 2 t t + 3 m m is diagonal there.
  odb_FieldOutput& s = model_.step().frames(0).FieldOutput("SP", "", E::TENSOR_3D_FULL);
  s.addData(E::CENTROID, model_.instance(), ints({10}),
            rows({{7 / 3.0F, 11 / 6.0F, 11 / 6.0F, 2 / 3.0F, 2 / 3.0F, -1 / 6.0F}}));
  expectAt(s.getTransformedField(sphere), 0, {1, 2, 3, 0, 0, 0});
}

TEST_F(Transformed, SphericalDirectionsExistOnTheAxisAndNotInTheOrigin) {
  const odb_DatumCsys& axes = model_.odb->rootAssembly().DatumCsysByThreePoints(
      "S", E::SPHERICAL, floats({0, 0, 0}), floats({1, 0, 0}), floats({0, 1, 0}));
  // Node 5 is at (0, 0, 1).
  const odb_FieldOutput turned =
      nodal("V", {1, 5}, {{1, 2, 3}, {1, 2, 3}}).getTransformedField(axes);
  expectAt(turned, 0, {1, 2, 3});
  expectAt(turned, 1, {3, 2, -1});
}

TEST_F(Transformed, RotationVectorsTurnTheDirectionsOfTheirNodes) {
  // Node 3 moves to (1, 0, 1), where the directions are z, -y, x, and turns by 90 degrees about z.
  const odb_FieldOutput turned =
      nodal("V", {3}, {{1, 2, 3}})
          .getTransformedField(sphereAboutX(), nodal("D", {3}, {{0, -1, 1}}),
                               nodal("UR", {3}, {{0, 0, std::acos(0.0F)}}));
  expectAt(turned, 0, {3, 1, 2});
}

TEST_F(Transformed, SurfaceTensorsTurnWithinTheirSurface) {
  odb_FieldOutput& s = model_.step().frames(0).FieldOutput("SH", "", E::TENSOR_3D_PLANAR);
  const auto asGiven = rows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40}), rows({{7, 3, 0, 1}}),
            model_.point(1), asGiven);
  const odb_FieldOutput turned = s.getTransformedField(turnedCsys("T", E::CARTESIAN));
  expectAt(turned, 0, {3, 7, 0, -1});
}

}  // namespace
}  // namespace odbs::test
