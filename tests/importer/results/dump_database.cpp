// SPDX-License-Identifier: BSD-3-Clause
// Prints what a database holds, one line an entry, for compare_database.py and compare_decks.py.
//
//     dump_database FILE.odb
#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <cmath>
#include <cstdio>
#include <exception>

namespace {

void printNumbers(const float* values, int n) {
  // The sign of what is no number differs between the libraries that print it.
  for (int i = 0; i < n; ++i) {
    std::printf(" %.9g", static_cast<double>(std::isnan(values[i]) ? NAN : values[i]));
  }
}

void printBlock(const odb_FieldBulkData& block, bool isComplex) {
  const int n = block.length(), width = block.width();
  const int point = block.sectionPoint().number();
  std::printf("block %d %s %d %d\n", static_cast<int>(block.position()),
              block.baseElementType().CStr(), point, isComplex ? 1 : 0);
  const int* const elements = block.elementLabels();
  const int* const nodes = block.nodeLabels();
  const int* const points = block.integrationPoints();
  const float* const data = block.data();
  const float* const conjugate = isComplex ? block.conjugateData() : nullptr;
  const float* const systems = block.orientationWidth() > 0 ? block.localCoordSystem() : nullptr;
  for (int i = 0; i < n; ++i) {
    std::printf("%d %d %d", elements ? elements[i] : -1, nodes ? nodes[i] : -1,
                points ? points[i] : -1);
    printNumbers(data + i * width, width);
    if (conjugate) printNumbers(conjugate + i * width, width);
    if (systems) {
      std::printf(" @");
      printNumbers(systems + 4 * i, 4);
    }
    std::printf("\n");
  }
}

void printMesh(const odb_Instance& instance) {
  std::printf("instance %s\n", instance.name().CStr());
  const odb_SequenceNode& nodes = instance.nodes();
  for (int i = 0; i < nodes.size(); ++i) {
    std::printf("node %d", nodes[i].label());
    printNumbers(nodes[i].coordinates(), 3);
    std::printf("\n");
  }
  const odb_SequenceElement& elements = instance.elements();
  for (int i = 0; i < elements.size(); ++i) {
    const odb_Element element = elements[i];
    int n = 0;
    const int* const connectivity = element.connectivity(n);
    std::printf("element %d %s", element.label(), element.type().CStr());
    for (int k = 0; k < n; ++k) std::printf(" %d", connectivity[k]);
    std::printf(" | %s\n", element.sectionCategory().name().CStr());
  }
}

template <class Members>
void printSet(const char* kind, const odb_String& name, const Members& members) {
  std::printf("%s %s |", kind, name.CStr());
  for (int i = 0; i < members.size(); ++i) std::printf(" %d", members[i].label());
  std::printf("\n");
}

void printSets(const odb_Instance& instance) {
  odb_SetRepositoryIT nodes(instance.nodeSets()), elements(instance.elementSets());
  for (nodes.first(); !nodes.isDone(); nodes.next()) {
    printSet("nset", nodes.currentKey(), nodes.currentValue().nodes());
  }
  for (elements.first(); !elements.isDone(); elements.next()) {
    printSet("elset", elements.currentKey(), elements.currentValue().elements());
  }
  const odb_SequenceSectionAssignment& assignments = instance.sectionAssignments();
  for (int i = 0; i < assignments.size(); ++i) {
    printSet("assigned", assignments[i].sectionName(), assignments[i].region().elements());
  }
}

// Materials of homogeneous sections, elastic constants, densities.
void printProperties(odb_Odb& odb) {
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  odb_SectionContainerIT section(sections.sections());
  for (section.first(); !section.isDone(); section.next()) {
    const odb_Section& value = section.currentValue();
    const char* material = "";
    if (odb_isA(odb_HomogeneousSolidSection, value)) {
      material = odb_dynamicCast(odb_HomogeneousSolidSection, value).material().CStr();
    } else if (odb_isA(odb_HomogeneousShellSection, value)) {
      material = odb_dynamicCast(odb_HomogeneousShellSection, value).material().CStr();
    }
    std::printf("section %s | %s\n", section.currentKey().CStr(), material);
  }
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  odb_MaterialContainerIT material(materials.materials());
  for (material.first(); !material.isDone(); material.next()) {
    const odb_Material& value = material.currentValue();
    const auto print = [&](const char* what, const odb_SequenceSequenceDouble& table) {
      std::printf("%s %s |", what, material.currentKey().CStr());
      for (int i = 0; i < table[0].size(); ++i) std::printf(" %.17g", table[0][i]);
      std::printf("\n");
    };
    if (value.elastic().hasValue()) print("elastic", value.elastic().table());
    if (value.density().hasValue()) print("density", value.density().table());
  }
}

void printSectionPoints(const odb_SectionCategory& category) {
  const odb_SequenceSectionPoint& points = category.sectionPoints();
  for (int i = 0; i < points.size(); ++i) {
    std::printf("point %d %s | %s\n", points[i].number(), points[i].description().CStr(),
                category.name().CStr());
  }
}

void printStep(odb_Step& step) {
  std::printf("step %s | %s\n", step.name().CStr(), step.procedure().CStr());
  odb_SequenceFrame& frames = step.frames();
  for (int i = 0; i < frames.size(); ++i) {
    const odb_Frame frame = frames[i];
    std::printf("frame %d %d %.9g %.9g\n", frame.incrementNumber(), frame.mode(),
                static_cast<double>(frame.frameValue()), static_cast<double>(frame.frequency()));
    odb_FieldOutputRepositoryIT fields(frame.fieldOutputs());
    for (fields.first(); !fields.isDone(); fields.next()) {
      const odb_FieldOutput field = fields.currentValue();
      std::printf("field %s\n", field.name().CStr());
      const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
      for (int b = 0; b < blocks.size(); ++b) printBlock(blocks[b], field.isComplex());
    }
    frames.release(i);
  }
  odb_HistoryRegionRepositoryIT regions(step.historyRegions());
  for (regions.first(); !regions.isDone(); regions.next()) {
    const odb_HistoryRegion region = regions.currentValue();
    odb_HistoryOutputRepositoryIT outputs(region.historyOutputs());
    for (outputs.first(); !outputs.isDone(); outputs.next()) {
      const odb_HistoryOutput output = outputs.currentValue();
      const odb_SequenceSequenceFloat& data = output.data();
      const odb_SequenceSequenceFloat& conjugate = output.conjugateData();
      std::printf("history %s | %s\n", region.name().CStr(), output.name().CStr());
      for (int i = 0; i < data.size(); ++i) {
        printNumbers(&data[i].engineItems()[0], 2);
        if (conjugate.size() > 0) printNumbers(&conjugate[i].engineItems()[1], 1);
        std::printf("\n");
      }
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: dump_database FILE.odb\n");
    return 2;
  }
  odb_initializeAPI();
  int status = 0;
  try {
    odb_Odb& odb = openOdb(argv[1], true);
    odb_InstanceRepositoryIT instances(odb.rootAssembly().instances());
    for (instances.first(); !instances.isDone(); instances.next()) {
      printMesh(instances.currentValue());
      printSets(instances.currentValue());
    }
    printProperties(odb);
    odb_SectionCategoryRepositoryIT categories(odb.sectionCategories());
    for (categories.first(); !categories.isDone(); categories.next()) {
      printSectionPoints(categories.currentValue());
    }
    odb_StepRepositoryIT steps(odb.steps());
    for (steps.first(); !steps.isDone(); steps.next()) {
      odb_Step step = steps.currentValue();
      printStep(step);
    }
    odb.close();
  } catch (const std::exception& error) {
    std::printf("error %s\n", error.what());
    status = 1;
  }
  odb_finalizeAPI();
  return status;
}
