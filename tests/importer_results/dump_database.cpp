// SPDX-License-Identifier: BSD-3-Clause
// Prints the meshes and the results in a database, one line an entry, for compare_database.py.
//
//     dump_database FILE.odb
#include <odb_API.h>

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

void printSectionPoints(const odb_SectionCategory& category) {
  const odb_SequenceSectionPoint& points = category.sectionPoints();
  for (int i = 0; i < points.size(); ++i) {
    std::printf("point %d %s | %s\n", points[i].number(), points[i].description().CStr(),
                category.name().CStr());
  }
}

void printStep(odb_Step& step) {
  std::printf("step %s\n", step.name().CStr());
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
    }
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
