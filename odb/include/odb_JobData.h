// SPDX-License-Identifier: BSD-3-Clause
// What is known of the analysis job that made a database. A plain value.
#pragma once

#include <odb_Sequences.h>

class odb_JobData {
 public:
  odb_Enum::odb_AnalysisCodeEnum analysisCode() const { return analysisCode_; }
  odb_Enum::odb_PrecisionEnum precision() const { return precision_; }
  const odb_String& name() const { return name_; }
  const odb_String& version() const { return version_; }
  const odb_String& creationTime() const { return creationTime_; }
  const odb_String& modificationTime() const { return modificationTime_; }
  const odb_String& machineName() const { return machineName_; }
  const odb_SequenceProductAddOn& productAddOns() const { return productAddOns_; }

  // For the library itself: odb_embedded::setJobData writes these.
  odb_Enum::odb_AnalysisCodeEnum analysisCode_ = odb_Enum::UNKNOWN_ANALYSIS_CODE;
  odb_Enum::odb_PrecisionEnum precision_ = odb_Enum::SINGLE_PRECISION;
  odb_String name_;
  odb_String version_;
  odb_String creationTime_;
  odb_String modificationTime_;
  odb_String machineName_;
  odb_SequenceProductAddOn productAddOns_;
};

// Cyclic symmetry of a model.
class odb_SectorDefinition {
 public:
  int numSectors() const { return numSectors_; }
  // Two points of the axis.
  const odb_SequenceSequenceFloat& symmetryAxis() const { return symmetryAxis_; }

  int numSectors_ = 0;
  odb_SequenceSequenceFloat symmetryAxis_;
};
