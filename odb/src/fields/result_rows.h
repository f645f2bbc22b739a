// SPDX-License-Identifier: BSD-3-Clause
// Fields of frames as rows of the stored tables.
#pragma once

#include "odb/src/fields/result_store.h"

namespace odbs::engine {

// The fields of a frame as the current file has them; none for a frame that was never saved.
// Throws odb_Exception when the file is damaged.
std::vector<FieldRow> storedRows(FrameData& frame);

// References to section points: place of the category, place among its points.
struct PointPlace {
  int category = -1;
  int point = 0;
};
PointPlace readPoint(const Rows& rows, std::int64_t row, int column);
// Throws odb_Exception for a point of another database.
PointPlace placeOf(Database& database, const odb_SectionPoint& point);

odb_SequenceInvariant invariantsFrom(std::int64_t bits);
std::int64_t bitsOf(const odb_SequenceInvariant& invariants);

}  // namespace odbs::engine
