// SPDX-License-Identifier: BSD-3-Clause
// Amplitudes: the base, its repository, and the one given by a table.
#pragma once

#include <odb_engine/named_object.h>

ODBS_NAMED_OBJECT(odb_Amplitude);
ODBS_REPOSITORY(odb_AmplitudeRepository, odb_Amplitude);

class odb_TabularAmplitude : public odb_Amplitude {
 public:
  using odb_Amplitude::odb_Amplitude;
  ODBS_TYPE_IDENTIFIER(odb_TabularAmplitude)
  // STEP or TOTAL: which time the table runs over.
  const odb_String& timeSpan() const { return text("timeSpan"); }
  // Part of an interval that is smoothed, 0 to 0.5.
  double smooth() const { return number("smooth"); }
  // Rows of time (or frequency) and amplitude.
  const odb_SequenceSequenceDouble& data() const { return rows("data"); }
};
