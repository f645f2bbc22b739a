// SPDX-License-Identifier: BSD-3-Clause
// The walk over a field's bulk-data blocks.
#include "results/field_extractor.h"

#include "results/block_writer.h"
#include "results/modal_stress.h"
#include "results/section_point_choice.h"
#include "results/selected_field.h"
#include "server/core/entity_records.h"
#include "server/core/result_codes.h"

namespace odbs {

namespace {

constexpr int kNoSectionPoint = -1;

class FieldWalk {
 public:
  FieldWalk(odb_Odb& odb, int outputFd, const FieldRequest& request, bool complex)
      : outputFd_(outputFd),
        request_(request),
        choice_(request.extraction == Extraction::kTop),
        writer_(odb, outputFd, complex, request.sendOrientations, request.selected) {}

  void run(const odb_FieldOutput& field) {
    forEachBlock(field, [this](const odb_FieldBulkData& block) {
      if (isWanted(block.sectionPoint().number())) sendBlock(block);
    });
    flushOutput(outputFd_);
  }

 private:
  bool keepsOnePoint() const {
    return request_.extraction == Extraction::kTop || request_.extraction == Extraction::kBottom;
  }

  bool isWanted(int sectionPoint) const {
    if (request_.extraction != Extraction::kPicked) return true;
    return sectionPoint == kNoSectionPoint || sectionPoint == request_.pick1 ||
           sectionPoint == request_.pick2;
  }

  void sendBlock(const odb_FieldBulkData& block) {
    const int number = block.sectionPoint().number();
    const int field = sectionPointField(request_, number);
    if (keepsOnePoint() && block.position() != odb_Enum::NODAL) {
      // Values without a section point are those of elements that have none: both say -1.
      const LabelTable& chosen = choice_.of(block.instance());
      writer_.send(block, field, Headers::kAlways,
                   [&](int element) { return chosen.find(element) == number; });
    } else {
      writer_.send(block, field, Headers::kAlways, KeepAll());
    }
  }

  int outputFd_;
  const FieldRequest& request_;
  SectionPointChoice choice_;
  BlockWriter writer_;
};

}  // namespace

int sectionPointField(const FieldRequest& request, int sectionPoint) {
  if (request.extraction == Extraction::kEveryPoint) return sectionPoint;
  if (sectionPoint == request.pick1) return 1;
  if (sectionPoint == request.pick2) return 2;
  return sectionPoint;
}

void extractField(odb_Odb& odb, int outputFd, const FieldRequest& request) {
  sendTitleAndKind(outputFd, odb);
  odb_FieldOutput field;
  if (!findField(odb, *request.selection, field)) return;
  if (isModalMeasure(request.selection->variableName)) {
    extractModalStress(odb, outputFd, request, field);
    return;
  }
  const bool complex = field.isComplex();  // of a subset it may be another
  if (request.extraction != Extraction::kAsStored) {
    field = atPosition(field, request.selection->position);
  }
  FieldWalk(odb, outputFd, request, complex).run(field);
}

}  // namespace odbs
