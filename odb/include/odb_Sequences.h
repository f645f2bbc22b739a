// SPDX-License-Identifier: BSD-3-Clause
// Sequences of numbers, texts and enumerators, and sequences of those.
#pragma once

#include <odb_Enum.h>
#include <odb_String.h>
#include <odb_engine/sequence.h>

// Declares sequence class NAME with items of type ITEM.
#define ODBS_SEQUENCE(NAME, ITEM)              \
  class NAME : public odbs::SequenceOf<ITEM> { \
   public:                                     \
    using odbs::SequenceOf<ITEM>::SequenceOf;  \
  }

ODBS_SEQUENCE(odb_SequenceInt, int);
ODBS_SEQUENCE(odb_SequenceDouble, double);
ODBS_SEQUENCE(odb_SequenceString, odb_String);
ODBS_SEQUENCE(odb_SequenceInvariant, odb_Enum::odb_InvariantEnum);
ODBS_SEQUENCE(odb_SequenceElementFace, odb_Enum::odb_ElementFaceEnum);
ODBS_SEQUENCE(odb_SequenceProductAddOn, odb_Enum::odb_ProductAddOnEnum);

class odb_SequenceFloat : public odbs::SequenceOf<float> {
 public:
  using odbs::SequenceOf<float>::SequenceOf;
  // Narrows each number.
  odb_SequenceFloat(const odb_SequenceDouble& numbers) : odbs::SequenceOf<float>(numbers.size()) {
    for (double number : numbers.engineItems()) append(static_cast<float>(number));
  }
};

ODBS_SEQUENCE(odb_SequenceSequenceInt, odb_SequenceInt);
ODBS_SEQUENCE(odb_SequenceSequenceDouble, odb_SequenceDouble);
ODBS_SEQUENCE(odb_SequenceSequenceElementFace, odb_SequenceElementFace);
ODBS_SEQUENCE(odb_SequenceSequenceSequenceDouble, odb_SequenceSequenceDouble);

class odb_SequenceSequenceFloat : public odbs::SequenceOf<odb_SequenceFloat> {
 public:
  using odbs::SequenceOf<odb_SequenceFloat>::SequenceOf;
  // Narrows each number.
  odb_SequenceSequenceFloat(const odb_SequenceSequenceDouble& rows)
      : odbs::SequenceOf<odb_SequenceFloat>(rows.size()) {
    for (const odb_SequenceDouble& row : rows.engineItems()) append(row);
  }
};

ODBS_SEQUENCE(odb_SequenceSequenceSequenceFloat, odb_SequenceSequenceFloat);
