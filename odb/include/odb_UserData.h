// SPDX-License-Identifier: BSD-3-Clause
// What users attach to a database: curves and annotations.
#pragma once

#include <odb_Sequences.h>
#include <odb_engine/handle.h>
#include <odb_engine/repository.h>

namespace odbs {
namespace engine {
struct CurveData;
struct AnnotationData;
class Database;
}  // namespace engine
}  // namespace odbs

class odb_UserXYData : public odbs::Handle<odbs::engine::CurveData> {
 public:
  using Handle::Handle;
  const odb_String& name() const;
  const odb_String& sourceDescription() const;
  const odb_String& contentDescription() const;
  const odb_String& positionDescription() const;
  const odb_String& xAxisLabel() const;
  const odb_String& yAxisLabel() const;
  const odb_String& legendLabel() const;
  const odb_String& description() const;
  // Puts the points, rows of x and y, into `out`, whose old content is lost.
  void getData(odb_SequenceSequenceFloat& out) const;
};

ODBS_REPOSITORY(odb_UserXYDataRepository, odb_UserXYData);

// A text annotation.
class odb_Text : public odbs::Handle<odbs::engine::AnnotationData> {
 public:
  using Handle::Handle;
  const odb_String& text() const;
};

ODBS_REPOSITORY(odb_AnnotationRepository, odb_Text);

class odb_UserData {
 public:
  odb_UserXYDataRepository& xyDataObjects() const;
  // Throws odb_Exception when there is no curve of that name.
  odb_UserXYData& xyDataObjects(const odb_String& name) const;
  odb_AnnotationRepository& annotationObjects() const;

  // For the library itself.
  explicit odb_UserData(odbs::engine::Database* database) : database_(database) {}

 private:
  odbs::engine::Database* database_;
};
