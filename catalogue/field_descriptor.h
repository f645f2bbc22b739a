// SPDX-License-Identifier: BSD-3-Clause
// What the catalogue knows of one field output of one frame, and the memo that keeps it: a frame is
// classified once in the life of the process, however often and in whatever form it is listed.
#pragma once

#include <odb_API.h>

#include <memory>
#include <string>
#include <vector>

namespace odbs {

struct FieldDescriptor {
  std::string key;                           // its key in the frame's repository
  int nodalClass = 0;                        // 0 not nodal, 1 nodal vector, 2 nodal scalar
  int elementPositionMask = 0;               // 8 element nodes, 4 integration points, 2 centroid or
                                             // face, 16 whole element
  int invariantMask = 0;                     // bit k: the invariant with code k is valid
  int tensorKindMask = 0;                    // 1 scalar, 2 six components, 4 four, 8 three,
                                             // 16 vector
  int vectorPositionMask = 0;                // elementPositionMask of vectors and tensors, else 0
  bool complex = false;                      // it has imaginary parts
  bool hasSectionPoints = false;             // some location has more than one section point
  std::string name;                          //
  std::string description;                   //
  std::vector<std::string> componentLabels;  //

  bool operator==(const FieldDescriptor& other) const;
};

// The descriptors of one frame, in the order of its repository.
struct DescriptorList {
  std::vector<FieldDescriptor> fields;
  bool hasStatus = false;  // one of the names is "STATUS"
  bool isWhole = true;     // no field output had to be left out
};

// Classifies one field output under its repository key. Throws what the database library throws.
FieldDescriptor describeField(const std::string& key, const odb_FieldOutput& field);

// The list of (step number, frame index) of the database of that name. The first call computes it
// from `frame`'s field outputs; later calls return the same list, whatever `frame` they bring. A
// field output that cannot be read is left out. The reference is valid to the end of the process.
const DescriptorList& frameDescriptors(const std::string& databaseName, int stepNumber,
                                       int frameIndex, const odb_Frame& frame);

}  // namespace odbs
