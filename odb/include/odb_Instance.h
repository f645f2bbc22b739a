// SPDX-License-Identifier: BSD-3-Clause
// Instances: parts placed in the assembly.
#pragma once

#include <odb_Part.h>

class odb_Instance : public odb_PartEntity {
 public:
  using odb_PartEntity::odb_PartEntity;

  // Labels of the nodes on one face of the elements of a type: the nodes of face `face` of element
  // `elementLabel`, empty when the element's type has no such face. Throws odb_Exception on an
  // unknown label.
  odb_SequenceInt nodesLabelsFromNodeTypeFace(int elementLabel,
                                              odb_Enum::odb_ElementFaceEnum face) const;
  // State of the results in trees of result states; this library has no such trees.
  odb_Enum::odb_ResultStateEnum resultState() const { return odb_Enum::PROPAGATED; }
};

ODBS_REPOSITORY(odb_InstanceRepository, odb_Instance);
