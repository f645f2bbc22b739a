// SPDX-License-Identifier: BSD-3-Clause
// Arithmetic, scalar fields, envelopes, other coordinate systems.
#include "tests/odb_results/results_model.h"

#include <gtest/gtest.h>

#include <array>
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
};

TEST_F(Transformed, CartesianSystemsTurnVectorsAndTensors) {
  // x along the global y, y along -x.
  const odb_DatumCsys& turned = turnedCsys("T", E::CARTESIAN);
  const odb_FieldOutput u = u_.getTransformedField(turned);
  EXPECT_NEAR(at(u, 0, 0), 0, 1e-6);
  EXPECT_NEAR(at(u, 0, 1), -1, 1e-6);
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
  odb_FieldOutput& v = model_.step().frames(0).FieldOutput("V", "", E::VECTOR);
  // Node 3 is at (1, 1, 0).
  v.addData(E::NODAL, model_.instance(), ints({3}), rows({{1, 1, 5}}));
  const odb_FieldOutput still = v.getTransformedField(axes);
  EXPECT_NEAR(at(still, 0, 0), std::sqrt(2.0F), 1e-6);
  EXPECT_NEAR(at(still, 0, 1), 0, 1e-6);
  EXPECT_NEAR(at(still, 0, 2), 5, 1e-6);
  odb_FieldOutput& moved = model_.step().frames(0).FieldOutput("D", "", E::VECTOR);
  moved.addData(E::NODAL, model_.instance(), ints({3}), rows({{-1, 0, 0}}));
  const odb_FieldOutput after = v.getTransformedField(axes, moved);
  EXPECT_NEAR(at(after, 0, 0), 1, 1e-6);
  EXPECT_NEAR(at(after, 0, 1), -1, 1e-6);
}

using Vector = std::array<double, 3>;

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vector unit(const Vector& a) {
  const double n = std::sqrt(dot(a, a));
  return {a[0] / n, a[1] / n, a[2] / n};
}

// A spherical system whose origin is (3, -1, 0.5), with x along the global z and z along -y.
struct Sphere {
  Vector origin = {3, -1, 0.5}, pole = {0, -1, 0};
  // Radial, circumferential, meridional.
  std::array<Vector, 3> at(const Vector& p) const {
    const Vector r = unit({p[0] - origin[0], p[1] - origin[1], p[2] - origin[2]});
    const Vector t = unit(cross(pole, r));
    return {r, t, cross(r, t)};
  }
  const odb_DatumCsys& in(odb_Odb& odb) const {
    return odb.rootAssembly().DatumCsysByThreePoints("SPHERE", E::SPHERICAL, floats({3, -1, 0.5F}),
                                                     floats({3, -1, 1.5F}), floats({2, -1, 1}));
  }
};

TEST_F(Transformed, SphericalDirectionsAreRadialCircumferentialMeridional) {
  const Sphere sphere;
  const odb_DatumCsys& csys = sphere.in(*model_.odb);
  odb_FieldOutput& v = model_.step().frames(0).FieldOutput("V", "", E::VECTOR);
  const Vector given = {0.7, -1.1, 2.3};
  // Nodes 3 and 8 are at (1, 1, 0) and (0, 1, 1).
  v.addData(E::NODAL, model_.instance(), ints({3, 8}),
            rows({{0.7F, -1.1F, 2.3F}, {0.7F, -1.1F, 2.3F}}));
  const odb_FieldOutput turned = v.getTransformedField(csys);
  for (int i = 0; i < 2; ++i) {
    const auto axes = sphere.at(i == 0 ? Vector{1, 1, 0} : Vector{0, 1, 1});
    for (int k = 0; k < 3; ++k) {
      EXPECT_NEAR(at(turned, i, k), dot(axes[static_cast<std::size_t>(k)], given), 1e-6);
    }
  }
  // A tensor r r + 2 t t + 3 m m in the middle of element 10 is diagonal there.
  const auto axes = sphere.at({0.5, 0.5, 0.5});
  std::vector<float> tensor;
  for (const auto& [i, j] : {std::pair(0, 0), {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}}) {
    double sum = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      sum += static_cast<double>(k + 1) * axes[k][static_cast<std::size_t>(i)] *
             axes[k][static_cast<std::size_t>(j)];
    }
    tensor.push_back(static_cast<float>(sum));
  }
  odb_FieldOutput& s = model_.step().frames(0).FieldOutput("SP", "", E::TENSOR_3D_FULL);
  s.addData(E::CENTROID, model_.instance(), ints({10}), rows({tensor}));
  const odb_FieldOutput diagonal = s.getTransformedField(csys);
  const float expected[] = {1, 2, 3, 0, 0, 0};
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(at(diagonal, 0, k), expected[k], 1e-5) << k;
}

TEST_F(Transformed, SphericalDirectionsExistOnTheAxisAndNotInTheOrigin) {
  const odb_DatumCsys& axes = model_.odb->rootAssembly().DatumCsysByThreePoints(
      "S", E::SPHERICAL, floats({0, 0, 0}), floats({1, 0, 0}), floats({0, 1, 0}));
  odb_FieldOutput& v = model_.step().frames(0).FieldOutput("V", "", E::VECTOR);
  // Node 5 is at (0, 0, 1).
  v.addData(E::NODAL, model_.instance(), ints({1, 5}), rows({{1, 2, 3}, {1, 2, 3}}));
  const odb_FieldOutput turned = v.getTransformedField(axes);
  const float expected[2][3] = {{1, 2, 3}, {3, 2, -1}};
  for (int i = 0; i < 2; ++i) {
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(at(turned, i, k), expected[i][k], 1e-6);
  }
}

TEST_F(Transformed, RotationVectorsTurnTheDirectionsOfTheirNodes) {
  const Sphere sphere;
  odb_Frame frame = model_.step().frames(0);
  const Vector given = {1, 2, 3}, rotation = {0.9, -0.4, 0.6}, move = {0.5, 0.25, -1};
  const auto add = [&](const char* name, const Vector& vector) {
    odb_FieldOutput field = frame.FieldOutput(name, "", E::VECTOR);
    std::vector<float> row(vector.begin(), vector.end());
    field.addData(E::NODAL, model_.instance(), ints({3}), rows({row}));
    return field;
  };
  const odb_FieldOutput v = add("V", given), d = add("D", move), r = add("UR", rotation);
  const odb_FieldOutput turned = v.getTransformedField(sphere.in(*model_.odb), d, r);
  const double angle = std::sqrt(dot(rotation, rotation));
  const Vector k = unit(rotation);
  const auto axes = sphere.at({1.5, 1.25, -1});
  for (std::size_t i = 0; i < 3; ++i) {
    // Rodrigues' formula.
    const Vector across = cross(k, axes[i]);
    double expected = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      expected += given[j] * (axes[i][j] * std::cos(angle) + across[j] * std::sin(angle) +
                              k[j] * dot(k, axes[i]) * (1 - std::cos(angle)));
    }
    EXPECT_NEAR(at(turned, 0, static_cast<int>(i)), expected, 1e-6);
  }
}

TEST_F(Transformed, SurfaceTensorsTurnWithinTheirSurface) {
  odb_FieldOutput& s = model_.step().frames(0).FieldOutput("SH", "", E::TENSOR_3D_PLANAR);
  const auto asGiven = rows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40}), rows({{7, 3, 0, 1}}),
            model_.point(1), asGiven);
  const odb_FieldOutput turned = s.getTransformedField(turnedCsys("T", E::CARTESIAN));
  EXPECT_NEAR(at(turned, 0, 0), 3, 1e-5);
  EXPECT_NEAR(at(turned, 0, 1), 7, 1e-5);
  EXPECT_NEAR(at(turned, 0, 2), 0, 1e-5);
  EXPECT_NEAR(at(turned, 0, 3), -1, 1e-5);
}

}  // namespace
}  // namespace odbs::test
