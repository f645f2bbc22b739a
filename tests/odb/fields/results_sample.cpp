// SPDX-License-Identifier: BSD-3-Clause
// Fields and histories of every kind, in one database.
#include "tests/odb/fields/results_model.h"

namespace odbs::test {

namespace {

using E = odb_Enum;

void addNodalFields(odb_Frame frame, const odb_Instance& p, const odb_Instance& other) {
  odb_SequenceInvariant magnitude;
  magnitude.append(E::MAGNITUDE);
  odb_FieldOutput& u =
      frame.FieldOutput("U", "Displacement", E::VECTOR, odb_SequenceString(), magnitude);
  u.addData(E::NODAL, p, ints({2, 5}), counted(2, 3));
  u.addData(E::NODAL, p, ints({9}), counted(1, 3, 90));
  u.addData(E::NODAL, other, ints({1}), counted(1, 3, 70));
  frame.FieldOutput("COMPLEX", "", E::VECTOR)
      .addData(E::NODAL, p, ints({1, 2}), counted(2, 3), odb_SectionPoint(),
               odb_SequenceSequenceFloat(), counted(2, 3, 50));
  frame.FieldOutput("DOUBLE", "", E::VECTOR)
      .addData(E::NODAL, p, ints({4}), doubleRows({{1.0 / 3, 2, 3}}));
  frame.VectorOutput("GU", "Generalised displacement", 5)
      .addData(E::NODAL, p, ints({1}), counted(1, 5));
  frame.MatrixOutput("M", "", 2, 3).addData(E::WHOLE_MODEL, p, odb_SequenceInt(), counted(1, 6));
  frame.SymmetricMatrixOutput("MATRIX Sqq", "", 4)
      .addData(E::WHOLE_MODEL, p, odb_SequenceInt(), counted(1, 10));
}

void addElementFields(odb_Frame frame, const odb_Instance& p, const odb_SectionCategory& shell) {
  odb_SequenceInvariant mises;
  mises.append(E::MISES);
  odb_FieldOutput& s =
      frame.FieldOutput("S", "Stress", E::TENSOR_3D_FULL, odb_SequenceString(), mises);
  s.addData(E::INTEGRATION_POINT, p, ints({10, 20, 30}), counted(18, 6));
  const odb_SectionPoint &bottom = shell.sectionPoints(0), &top = shell.sectionPoints(1);
  s.addData(E::INTEGRATION_POINT, p, ints({40, 50}), counted(2, 4), bottom);
  s.addData(E::INTEGRATION_POINT, p, ints({40, 50}), counted(2, 4, 100), top,
            rows({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}));
  const odb_Set& ends = p.surfaces()["ENDS"];
  const auto scalar = [&](const char* name) -> odb_FieldOutput& {
    return frame.FieldOutput(name, "", E::SCALAR);
  };
  scalar("NFORC").addData(E::ELEMENT_NODAL, p, ints({20, 30}), counted(14, 1));
  scalar("C").addData(E::CENTROID, p, ints({10, 20}), counted(2, 1));
  scalar("W").addData(E::WHOLE_ELEMENT, p, ints({10, 20}), counted(2, 1));
  scalar("F").addData(E::ELEMENT_FACE, ends, counted(2, 1));
  scalar("FI").addData(E::ELEMENT_FACE_INTEGRATION_POINT, ends, counted(8, 1));
  scalar("SI").addData(E::SURFACE_INTEGRATION_POINT, ends, counted(8, 1));
  scalar("I").addData(E::WHOLE_PART_INSTANCE, p, odb_SequenceInt(), counted(1, 1, 7));
}

void addHistories(odb_Step& step, const odb_Assembly& assembly, const odb_SectionPoint& point) {
  const odb_Instance& p = assembly.instances()["P-1"];
  const odb_Element shell = p.getElementFromLabel(40);
  const odb_Node node = p.getNodeFromLabel(2);
  odb_HistoryOutput& output =
      step.HistoryRegion("node", "Output at node 2", odb_HistoryPoint(node), step.LoadCase("LC1"))
          .HistoryOutput("U1", "Displacement");
  output.addData(0.5, 1.25);
  output.addData(floats({1, 2}), floats({3, 4}));
  output.addData(rows({{3, 9}}));
  odb_embedded::addConjugateData(output, rows({{10, -2}, {11, -3}}));
  step.HistoryRegion("ip", "", odb_HistoryPoint(shell, 1, point));
  step.HistoryRegion("face", "", odb_HistoryPoint(shell, 0, odb_SectionPoint(), E::SPOS));
  step.HistoryRegion("whole", "", odb_HistoryPoint(shell));
  step.HistoryRegion("corner", "",
                     odb_HistoryPoint(shell, 0, odb_SectionPoint(), E::FACE_UNKNOWN, node));
  step.HistoryRegion("set", "", odb_HistoryPoint(p.nodeSets()["BASE"]));
  step.HistoryRegion("assembly", "", odb_HistoryPoint(assembly));
  step.HistoryRegion("instance", "", odb_HistoryPoint(assembly.instances()["P-2"]));
  odb_embedded::addFailureTimes(step, p, {10, 30}, {0.25F, 0.75F});
  odb_embedded::addFailureTimes(step, assembly.instances()["P-2"], {20}, {0.5F});
}

}  // namespace

odb_Odb& makeResultsSample(const std::string& name, const std::string& path) {
  odb_Odb& odb = Odb(name.c_str(), "A title", "A description", path.c_str());
  fillModel(odb);
  odb_Assembly& assembly = odb.rootAssembly();
  odb_Instance &p = assembly.instances()["P-1"], &other = assembly.instances()["P-2"];
  odb_Step& step = odb.steps()["Step-1"];
  addNodalFields(step.Frame(0, 0), p, other);
  addElementFields(step.Frame(1, 1), p, odb.sectionCategories()["shell"]);
  addHistories(step, assembly, odb.sectionCategories()["shell"].sectionPoints(1));
  return odb;
}

}  // namespace odbs::test
