// SPDX-License-Identifier: BSD-3-Clause
// Frames: the points of a step at which results were saved.
#pragma once

#include <odb_LoadCase.h>
#include <odb_Sequences.h>

namespace odbs {
namespace engine {
struct FrameData;
}
}  // namespace odbs

class odb_FieldOutput;
class odb_FieldOutputRepository;

class odb_Frame : public odbs::Handle<odbs::engine::FrameData> {
 public:
  using Handle::Handle;

  const odb_String& description() const;
  // The domain of the frame's step.
  odb_Enum::odb_DomainEnum domain() const;
  int incrementNumber() const;
  // Number of the eigenmode; 0 outside modal steps.
  int mode() const;
  int cyclicModeNumber() const;
  // Index in its step, counted from 0.
  int frameIndex() const;
  // Number that identifies the frame in its step.
  int frameId() const;
  // Step time, frequency (cycles per time) or arc length, by the step's domain.
  float frameValue() const;
  // Cycles per time in modal and frequency steps, else 0.
  float frequency() const;
  // A load case with an empty name when the frame belongs to none.
  const odb_LoadCase& loadCase() const;
  // The frame that holds the other part of a result, such as the imaginary one of a cyclic mode.
  // Throws odb_Exception when there is none.
  odb_Frame associatedFrame() const;

  odb_FieldOutputRepository& fieldOutputs() const;

  // ---- Writing ----

  // Adds a field without data. Default labels: name + 1,2,3 (vectors) or 11,22,33,12,13,23
  // (tensors). Throws odb_Exception on a read-only database or a name that is taken.
  odb_FieldOutput& FieldOutput(
      const odb_String& name, const odb_String& description, odb_Enum::odb_DataTypeEnum type,
      const odb_SequenceString& componentLabels = odb_SequenceString(),
      const odb_SequenceInvariant& validInvariants = odb_SequenceInvariant(),
      bool isEngineeringTensor = false);
  // Adds a copy of a field, under a new name and description where they are given.
  odb_FieldOutput& FieldOutput(const odb_FieldOutput& field, const odb_String& name = "",
                               const odb_String& description = "");
  // Adds a field of vectors or matrices of any size; the symmetric form holds the packed lower
  // triangle.
  odb_FieldOutput& VectorOutput(const odb_String& name, const odb_String& description, int width);
  odb_FieldOutput& MatrixOutput(const odb_String& name, const odb_String& description, int rows,
                                int columns);
  odb_FieldOutput& SymmetricMatrixOutput(const odb_String& name, const odb_String& description,
                                         int dim);
};

class odb_SequenceFrame : public odbs::SequenceOf<odb_Frame, std::deque<odb_Frame>> {
 public:
  using SequenceOf::SequenceOf;
  // Drops the field data that frame `i` has loaded; they are read again when asked for.
  void release(int i) const;
  // The same of all frames.
  void release() const;
};
