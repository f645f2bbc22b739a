// SPDX-License-Identifier: BSD-3-Clause
// A program as users write them: makes a database with a part, sets, sections and
// a step with results.
// Built with odb_main, which has the main function. Argument: the path to write.
#include <odb_API.h>
#include <odb_Enum.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <iostream>

static void addMaterialAndSection(odb_Odb& odb) {
  odb_String materialName("Elastic Material");
  odb_MaterialApi materialApi;
  odb.extendApi(odb_Enum::odb_MATERIAL, materialApi);
  odb_Material& material = materialApi.Material(materialName);
  odb_SequenceSequenceDouble elasticTable;
  odb_SequenceDouble row;
  row.append(12000);
  row.append(0.3);
  elasticTable.append(row);
  material.Elastic(elasticTable);

  odb_SectionApi sectionApi;
  odb.extendApi(odb_Enum::odb_SECTION, sectionApi);
  odb_String sectionName("Homogeneous Solid Section");
  odb_HomogeneousSolidSection& solid =
      sectionApi.HomogeneousSolidSection(sectionName, materialName, 2.0f);
  if (solid.material() != materialName) throw nex_Exception("section without its material");
}

static void addMesh(odb_Odb& odb) {
  odb_String categoryName("S5");
  odb_String categoryDescription("Five-Layered Shell");
  odb_SectionCategory& category = odb.SectionCategory(categoryName, categoryDescription);
  odb_SectionPoint& bottom = category.SectionPoint(1, "Bottom");
  category.SectionPoint(5, "Top");
  if (bottom.number() != 1) throw nex_Exception("wrong section point");

  odb_Part& part1 = odb.Part("part-1", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  odb_SequenceInt nodeLabels;
  nodeLabels.append(1);
  nodeLabels.append(2);
  nodeLabels.append(3);
  nodeLabels.append(4);
  odb_SequenceSequenceFloat nodeCoor;
  for (int n = 0; n < 4; n++) {
    odb_SequenceFloat loc;
    loc.append((float)(n / 2));
    loc.append((float)(n == 1 || n == 2));
    loc.append(0.0f);
    nodeCoor.append(loc);
  }
  part1.addNodes(nodeLabels, nodeCoor, "nodes-1");

  odb_SequenceInt elLabels;
  odb_SequenceSequenceInt connect;
  elLabels.append(1);
  odb_SequenceInt con;
  for (int i = 1; i < 5; i++) con.append(i);
  connect.append(con);
  part1.addElements(elLabels, connect, "S4", "els-1", category);

  odb_Assembly& rootAssy = odb.rootAssembly();
  odb_Instance& instance1 = rootAssy.Instance("part-1-1", part1);
  odb_SequenceInt setLabels;
  setLabels.append(2);
  setLabels.append(3);
  instance1.NodeSet("corner", setLabels);
  odb_SequenceString names;
  names.append("part-1-1");
  odb_SequenceSequenceInt perInstance;
  perInstance.append(setLabels);
  odb_Set& tied = rootAssy.NodeSet("assembly set", names, perInstance);
  rootAssy.RigidBody(tied, odb_Enum::CENTER_OF_MASS);
  odb_embedded::addConstraint(
      odb, {"odb_Tie", "glue", {{"adjust", true}, {"positionTolerance", 0.5}}, {{"master", tied}}});

  odb_SectionApi sectionApi;
  odb.extendApi(odb_Enum::odb_SECTION, sectionApi);
  odb_Set elementSet;
  elementSet = instance1.elementSets()["els-1"];
  instance1.assignSection(elementSet, sectionApi.sections()["Homogeneous Solid Section"]);
}

static void addResults(odb_Odb& odb) {
  odb_Step& step1 = odb.Step("step-1", "the step", odb_Enum::TIME, 1.0);
  odb_Instance& instance1 = odb.rootAssembly().instances()["part-1-1"];
  const odb_SequenceNode& nodes = instance1.nodes();
  odb_SequenceInt labels;
  odb_SequenceSequenceFloat dispData;
  for (int n = 0; n < nodes.size(); n++) {
    labels.append(nodes[n].label());
    odb_SequenceFloat disp(3);
    for (int k = 0; k < 3; k++) disp.append((float)(n + k));
    dispData.append(disp);
  }
  for (int increment = 0; increment < 3; increment++) {
    odb_Frame frame = step1.Frame(increment, 0.5f * (float)increment, "a frame");
    odb_FieldOutput& uField = frame.FieldOutput("U", "Displacements", odb_Enum::VECTOR);
    uField.addData(odb_Enum::NODAL, instance1, labels, dispData);
  }
}

int ABQmain(int argc, char** argv);

int ABQmain(int argc, char** argv) {
  if (argc != 2) throw nex_Exception("one argument, the path, is wanted");
  odb_Odb& odb =
      Odb("simpleModel", "ODB created with C++ API", "example illustrating the API", argv[1]);
  addMaterialAndSection(odb);
  addMesh(odb);
  addResults(odb);
  odb.save();
  odb.close();
  std::cout << "written" << std::endl;
  return 0;
}
