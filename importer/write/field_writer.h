// SPDX-License-Identifier: BSD-3-Clause
// Writes the frames of a result file as fields.
#pragma once

#include <odb_API.h>
#include <odb_embedded.h>
#include <odb_embedded_results.h>

#include <map>
#include <string>
#include <vector>

#include "importer/results/result_fields.h"
#include "importer/results/result_mesh.h"
#include "importer/write/result_frames.h"
#include "importer/write/result_writer.h"

namespace odbs::importer {

// Invariants that a field of a shape has.
odb_SequenceInvariant invariantsOf(FieldShape shape);
odb_Enum::odb_DataTypeEnum typeOf(FieldShape shape);

// The field of that name, made when the frame has none.
odb_FieldOutput& fieldOf(odb_Frame& frame, const std::string& name, const std::string& description,
                         FieldShape shape);

// Makes the components that a database has of `n` numbers, tensors one after another: engineering
// shear of a strain's.
void toStored(FieldShape shape, float* components, std::size_t n);

// First and last section point of a layer (from 0) of the category; default-constructed objects
// when it has none there.
struct LayerPoints {
  odb_SectionPoint bottom, top;
};
LayerPoints layerPoints(const odb_SectionCategory& category, int layer);

// The section point of a beam's corner, see SectionCorner.
odb_SectionPoint cornerPoint(const odb_SectionCategory& category, int corner);

class FieldWriter {
 public:
  // An instance and what the result file has of its mesh.
  struct Target {
    const ResultMesh* mesh;
    odb_Instance instance;
  };
  // Everything must outlive this; there is one target at least.
  FieldWriter(FrdReader& reader, const FrdIndex& index, std::vector<Target> targets)
      : reader_(reader), index_(index), targets_(std::move(targets)) {}

  // Writes all fields of `frame` to `target`. Returns their number. `sectionForces`: see
  // targetFields.
  std::size_t write(const FrdFrame& frame, odb_Frame& target, bool sectionForces);

  // Names of the blocks that found no place, with how often.
  const std::map<std::string, std::size_t>& leftOut() const { return leftOut_; }

 private:
  // The values of a block: the row of each node of the index, -1 for none.
  struct Block {
    FrdResult result;
    std::vector<std::int32_t> rowOf;
  };
  Block read(const FrdField& field);
  bool writeField(odb_Frame& frame, const TargetField& field, const Block& real,
                  const Block* imaginary);
  bool writeNodal(const Target& target, odb_Frame& frame, const TargetField& field,
                  const Block& real, const Block* imaginary);
  bool writeOfElements(const Target& target, odb_Frame& frame, const TargetField& field,
                       const Block& real, const Block* imaginary);
  class Rows;
  // Writes those of `labels` whose `nEach` targets all have values. finish(values, row) has the
  // last say on what was appended for a target.
  template <class Finish>
  bool writeRows(Rows& rows, const TargetField& field, const NodeSources& sources,
                 const std::vector<std::int32_t>& labels, std::size_t nEach, const Block& real,
                 const Block* imaginary, Finish finish);
  // True when all sources of `n` targets from `target` on have values.
  static bool has(const NodeSources& sources, std::size_t target, std::size_t n,
                  const Block& block);
  // Appends the components of one target.
  static void gather(const NodeSources& sources, std::size_t target, const TargetField& field,
                     const Block& block, std::vector<float>& values);

  FrdReader& reader_;
  const FrdIndex& index_;
  std::vector<Target> targets_;
  std::map<std::string, std::size_t> leftOut_;
};

}  // namespace odbs::importer
