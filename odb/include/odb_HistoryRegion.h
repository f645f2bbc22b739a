// SPDX-License-Identifier: BSD-3-Clause
// History output: values over time, frequency or mode at single points or regions.
#pragma once

#include <odb_Assembly.h>
#include <odb_Instance.h>
#include <odb_LoadCase.h>
#include <odb_SectionCategory.h>
#include <odb_Set.h>

#include <memory>

namespace odbs {
namespace engine {
struct HistoryOutputData;
struct HistoryPointData;
struct HistoryRegionData;
}  // namespace engine
}  // namespace odbs

// Where a history was recorded. Plain objects, compared by content.
class odb_HistoryPoint {
 public:
  odb_HistoryPoint();
  explicit odb_HistoryPoint(const odb_Node& node);
  explicit odb_HistoryPoint(const odb_Element& element, int ipNumber = 0,
                            const odb_SectionPoint& sectionPoint = odb_SectionPoint(),
                            odb_Enum::odb_ElementFaceEnum face = odb_Enum::FACE_UNKNOWN,
                            const odb_Node& node = odb_Node());
  explicit odb_HistoryPoint(const odb_Set& region);
  explicit odb_HistoryPoint(const odb_Assembly& assembly);
  explicit odb_HistoryPoint(const odb_Instance& instance);

  // NODAL for a node; for an element ELEMENT_NODAL with a node, else INTEGRATION_POINT with a
  // point's number, else ELEMENT_FACE with a face, else WHOLE_ELEMENT; WHOLE_REGION,
  // WHOLE_PART_INSTANCE or WHOLE_MODEL for the others.
  odb_Enum::odb_ResultPositionEnum position() const;
  // Label -1 when the point has none.
  const odb_Node& node() const;
  const odb_Element& element() const;
  // Integration point, counted from 1; 0 for none.
  int ipNumber() const;
  // Number -1 for none.
  const odb_SectionPoint& sectionPoint() const;
  odb_Enum::odb_ElementFaceEnum face() const;
  // An empty name when the point is no such thing; the point of a node or element of an instance
  // has that instance.
  const odb_Set& region() const;
  const odb_Instance& instance() const;
  const odb_Assembly& assembly() const;

  bool operator==(const odb_HistoryPoint& other) const;
  bool operator!=(const odb_HistoryPoint& other) const { return !(*this == other); }

  // For the library itself.
  odbs::engine::HistoryPointData& engineData() const { return *data_; }

 private:
  std::shared_ptr<odbs::engine::HistoryPointData> data_;
};

// One variable over time. A handle.
class odb_HistoryOutput : public odbs::Handle<odbs::engine::HistoryOutputData> {
 public:
  using Handle::Handle;
  const odb_String& name() const;
  const odb_String& description() const;
  odb_Enum::odb_DataTypeEnum type() const;
  const odb_SequenceInvariant& validInvariants() const;
  // Rows of two: step time, frequency or mode (by the step's domain), and the value. Read from the
  // database at first use.
  const odb_SequenceSequenceFloat& data() const;
  // Imaginary parts, rows as above; empty when there are none.
  const odb_SequenceSequenceFloat& conjugateData() const;

  // ---- Writing. Each throws odb_Exception on a read-only database. ----

  // Adds one value, several (lists of equal length), or rows of two.
  void addData(double frame, double value);
  void addData(const odb_SequenceFloat& frames, const odb_SequenceFloat& values);
  void addData(const odb_SequenceDouble& frames, const odb_SequenceDouble& values);
  void addData(const odb_SequenceSequenceFloat& pairs);

  // For the library itself: keeps the data of a copy alive.
  explicit odb_HistoryOutput(std::shared_ptr<odbs::engine::HistoryOutputData> own);

 private:
  std::shared_ptr<odbs::engine::HistoryOutputData> own_;
};

ODBS_REPOSITORY(odb_HistoryOutputRepository, odb_HistoryOutput);

// The variables that were recorded at one point. A handle.
class odb_HistoryRegion : public odbs::Handle<odbs::engine::HistoryRegionData> {
 public:
  using Handle::Handle;
  // Such as "Node PART-1-1.1000", "Element PART-1-1.2 Int Point 1", "Assembly ASSEMBLY".
  const odb_String& name() const;
  const odb_String& description() const;
  odb_Enum::odb_ResultPositionEnum position() const;
  const odb_HistoryPoint& historyPoint() const;
  const odb_HistoryPoint& point() const;
  odb_HistoryOutputRepository& historyOutputs() const;
  odb_HistoryOutput& historyOutputs(const odb_String& name) const;
  // A load case with an empty name when the region belongs to none.
  const odb_LoadCase& loadCase() const;

  // Copies that hold one variable, or the values from `start` (to `end`) on, ends included. Throws
  // odb_Exception when there is no such variable.
  odb_HistoryRegion getSubset(const odb_String& variableName) const;
  odb_HistoryRegion getSubset(const char* variableName) const;
  odb_HistoryRegion getSubset(double start) const;
  odb_HistoryRegion getSubset(double start, double end) const;

  // ---- Writing ----

  // Adds a variable without values. Throws odb_Exception on a read-only database, a name that is
  // taken, or a type other than SCALAR.
  odb_HistoryOutput& HistoryOutput(
      const odb_String& name, const odb_String& description,
      odb_Enum::odb_DataTypeEnum type = odb_Enum::SCALAR,
      const odb_SequenceInvariant& validInvariants = odb_SequenceInvariant());

  // For the library itself: keeps the data of a copy alive.
  explicit odb_HistoryRegion(std::shared_ptr<odbs::engine::HistoryRegionData> own);

 private:
  std::shared_ptr<odbs::engine::HistoryRegionData> own_;
};

ODBS_REPOSITORY(odb_HistoryRegionRepository, odb_HistoryRegion);
