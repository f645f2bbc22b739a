// SPDX-License-Identifier: BSD-3-Clause
// The result side of odb_embedded.h: field values from plain arrays, in either precision and at any
// position, imaginary parts of histories, element failure times. All throw odb_Exception on a
// read-only database.
#pragma once

#include <odb_API.h>

#include <vector>

namespace odb_embedded {

// Values to be added to a field; arrays are read during the call and stay with the caller. `Real`
// is float or double, and decides the precision of the stored values.
template <class Real>
struct FieldValues {
  odb_Enum::odb_ResultPositionEnum position = odb_Enum::NODAL;
  odb_Instance instance;
  const int* labels = nullptr;  // of nodes (NODAL) or elements
  int nLabels = 0;
  // One row of `width` components per value; as many values per element as odb_FieldOutput::addData
  // wants.
  const Real* data = nullptr;
  int nRows = 0;
  int width = 0;
  // Where large data come in several calls that all add to one block (an instance, position,
  // element type, section point): rows of all calls, so that values go to the file as they come.
  // Every call gives the same number. 0: not known. A wrong number costs memory or space in the
  // file, nothing else.
  int nRowsInAll = 0;
  const Real* conjugate = nullptr;    // nRows x width, or null
  const Real* quaternions = nullptr;  // nRows x 4 as odb_FieldBulkData gives them, or null
  odb_SectionPoint sectionPoint;
  // With ELEMENT_FACE: the face of each row; then `labels` has one entry per row.
  const odb_Enum::odb_ElementFaceEnum* faces = nullptr;
  // With INTEGRATION_POINT: the point's number of each row; then `labels` has one entry per row.
  const int* integrationPoints = nullptr;
};

// The same checks and failures as odb_FieldOutput::addData.
void addData(odb_FieldOutput& field, const FieldValues<float>& values);
void addData(odb_FieldOutput& field, const FieldValues<double>& values);

// Adds rows of (x, imaginary part) to a history output.
void addConjugateData(odb_HistoryOutput& output, const odb_SequenceSequenceFloat& pairs);

// Adds failures to what the step has, times in step time; odb_FailureTimes.h reads them.
void addFailureTimes(odb_Step& step, const odb_Instance& instance,
                     const std::vector<int>& elementLabels, const std::vector<float>& times);

// Drops the arrays that a block has read or computed; they are read or computed again when needed.
// Pointers that were got from the block become invalid.
void releaseArrays(const odb_FieldBulkData& block);

}  // namespace odb_embedded
