// SPDX-License-Identifier: BSD-3-Clause
// A program as users write them: walks the model of a database and prints it. Every result is bound
// in the several ways that such programs bind it. Argument: the path to read.
#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <iostream>
using namespace std;

static void printModel(odb_Odb& odb) {
  odb_Assembly& rootAssy = odb.rootAssembly();
  odb_InstanceRepository& instances = rootAssy.instances();
  odb_InstanceRepositoryIT instIter(instances);
  for (instIter.first(); !instIter.isDone(); instIter.next()) {
    odb_Instance& instance = instances[instIter.currentKey()];
    cout << "instance " << instance.name().CStr() << endl;
    odb_SequenceNode& changeable = instance.nodes();
    const odb_SequenceNode& nodeList = instance.nodes();
    odb_SequenceNode copied = instance.nodes();
    for (int n = 0; n < nodeList.size(); n++) {
      odb_Node& byReference = changeable[n];
      const odb_Node& byConstReference = nodeList[n];
      odb_Node byValue = copied.node(n);
      const float* const coords = byValue.coordinates();
      cout << "node " << byReference.label() << " " << byConstReference.label() << " " << coords[0]
           << " " << coords[1] << " " << coords[2] << " of " << byValue.coordinate().size() << endl;
    }
    const odb_SequenceElement elementList(instance);
    for (int n = 0; n < elementList.size(); n++) {
      odb_Element element = elementList[n];
      int numNodes;
      const int* const conn = element.connectivity(numNodes);
      odb_String elementType = element.type();
      const odb_SectionCategory& category = element.sectionCategory();
      cout << "element " << elementList.element(n).label() << " " << elementType.CStr() << " "
           << category.name().cStr();
      for (int j = 0; j < numNodes; j++) cout << " " << conn[j];
      const odb_SequenceSectionPoint& points = category.sectionPoints();
      for (int j = 0; j < points.size(); j++) cout << " point " << points[j].number();
      cout << endl;
    }
    odb_SetRepositoryIT setIter(instance.nodeSets());
    for (setIter.first(); !setIter.isDone(); setIter.next()) {
      const odb_Set& set = setIter.currentValue();
      cout << "set " << set.name().CStr() << " of " << set.size() << endl;
    }
    odb_SequenceSectionAssignment assignments = instance.sectionAssignments();
    for (int s = 0; s < assignments.size(); ++s) {
      const odb_SectionAssignment& assignment = assignments[s];
      odb_Set region = assignment.region();
      const odb_SequenceElement& members = region.elements();
      cout << "assigned " << assignment.sectionName().CStr() << " to " << members.size() << endl;
    }
  }
}

static void printSections(odb_Odb& odb) {
  odb_SectionApi sectionApi;
  odb.extendApi(odb_Enum::odb_SECTION, sectionApi);
  odb_SectionContainer& sections = sectionApi.sections();
  odb_SectionContainerIT scIT(sections);
  for (scIT.first(); !scIT.isDone(); scIT.next()) {
    const odb_Section& section = scIT.currentValue();
    if (odb_isA(odb_HomogeneousSolidSection, section)) {
      odb_HomogeneousSolidSection solid = odb_dynamicCast(odb_HomogeneousSolidSection, section);
      cout << "solid of " << solid.material().CStr() << " " << solid.thickness() << endl;
    }
  }
  odb_MaterialApi materialApi;
  odb.extendApi(odb_Enum::odb_MATERIAL, materialApi);
  odb_MaterialContainerIT matIT(materialApi.materials());
  for (matIT.first(); !matIT.isDone(); matIT.next()) {
    const odb_Material& material = matIT.currentValue();
    odb_Elastic elastic = material.elastic();
    if (!elastic.hasValue()) continue;
    odb_SequenceSequenceDouble table = elastic.table();
    cout << "elastic " << elastic.type().CStr() << " " << table[0][0] << endl;
  }
}

// Identifiers are kept as numbers; sets and positions are bound by value.
static void printConstraints(odb_Odb& odb) {
  odb_ConstraintRepositoryIT conIter(odb.constraints());
  for (conIter.first(); !conIter.isDone(); conIter.next()) {
    const odb_Constraint& constraint = conIter.currentValue();
    unsigned int type = constraint.subTypeIdentifier();
    if (type != odb_Tie::typeIdentifier()) continue;
    odb_Tie tie = odb_dynamicCast(odb_Tie, constraint);
    if (!tie.hasValue()) continue;
    cout << "tie " << tie.name().CStr() << " " << tie.master().name().CStr() << " "
         << tie.positionTolerance() << " " << (tie.adjust() ? "adjusted" : "as is") << endl;
  }
  const odb_SequenceRigidBody& bodies = odb.constRootAssembly().rigidBodies();
  for (int i = 0; i < bodies.size(); ++i) {
    if (bodies[i].position() == odb_Enum::INPUT) continue;
    cout << "rigid body at " << bodies[i].position().CStr() << endl;
  }
}

static void printAndReleaseSteps(odb_Odb& odb) {
  odb_StepList steps = odb.steps().stepList();
  odb_FieldOutputRepository& fields = steps.Last().frames(0).fieldOutputs();
  odb_SequenceString names = fields.getFieldOutputNames();
  for (int i = 0; i < names.size(); i++) {
    cout << "field " << names[i].CStr() << endl;
    fields.release(names[i]);
  }
  fields.release();
  cout << "last step " << steps.ConstGet(steps.size() - 1).name().CStr() << " "
       << odb_String(steps.Last().frames().size()).CStr() << endl;
  odb.steps().release(steps.Last().name());
  odb.release();
  try {
    odb.steps().get("no such step");
  } catch (odb_Exception& exc) {
    cout << exc.AsString() << " / " << (exc.UserReport().text() == exc.DeveloperReport().text())
         << endl;
  }
}

int main(int argc, char** argv) {
  odb_initializeAPI();
  try {
    char* path = argc > 1 ? argv[1] : nullptr;
    odb_Odb& odb = openOdb(odb_String("results"), path, true);
    odb_String title = odb.analysisTitle();
    title.append(" / ").append(odb.jobData().precision()).append(" / ").append("end");
    cout << "title " << title.CStr() << endl;
    printModel(odb);
    printSections(odb);
    printConstraints(odb);
    printAndReleaseSteps(odb);
    odb.close();
  } catch (odb_BaseException& exc) {
    cerr << "odbBaseException caught" << endl;
    cerr << exc.UserReport().CStr() << endl;
    return 1;
  } catch (...) {
    cerr << "Unknown Exception" << endl;
    return 2;
  }
  odb_finalizeAPI();
  return 0;
}
