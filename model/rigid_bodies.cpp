// SPDX-License-Identifier: BSD-3-Clause
// Analytic surface and rigid body records of model/rigid_bodies.h.
#include "model/rigid_bodies.h"

#include "model/put.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

constexpr unsigned char kAnalyticSurfaceTag = 'L';
constexpr unsigned char kRigidBodyTag = 'M';

std::size_t sizeOfRow(const odb_SequenceFloat& row) {
  return 4 + 4 * static_cast<std::size_t>(row.size());
}

std::size_t sizeOfTable(const odb_SequenceSequenceFloat& table) {
  std::size_t size = 4;
  const int nRows = table.size();
  for (int i = 0; i < nRows; ++i) size += sizeOfRow(table[i]);
  return size;
}

// Row count, then each row as its value count and values. Rows that would not leave `reserved`
// bytes of the record free are left out and not counted.
void putTable(const odb_SequenceSequenceFloat& table, std::size_t reserved = 0) {
  std::size_t size = 4 + reserved;
  int nRows = 0;
  while (nRows < table.size() && size + sizeOfRow(table[nRows]) <= recordRoom()) {
    size += sizeOfRow(table[nRows++]);
  }
  putI32(nRows);
  for (int i = 0; i < nRows; ++i) {
    const odb_SequenceFloat& row = table[i];
    const int nValues = row.size();
    putI32(nValues);
    for (int j = 0; j < nValues; ++j) putF32(row[j]);
  }
}

// Segment count, then each segment as its type text and its data as a table. Segments past the end
// of the record are left out and not counted.
void putSegments(const odb_SequenceAnalyticSurfaceSegment& segments) {
  std::size_t size = 4;
  int nSegments = 0;
  for (; nSegments < segments.size(); ++nSegments) {
    const odb_AnalyticSurfaceSegment& segment = segments[nSegments];
    size += 4 + static_cast<std::size_t>(segment.type().Length()) + sizeOfTable(segment.data());
    if (size > recordRoom()) break;
  }
  putI32(nSegments);
  for (int i = 0; i < nSegments; ++i) {
    putString(segments[i].type());
    putTable(segments[i].data());
  }
}

}  // namespace

// Analytic surface record, buffered.
//   size   content
//   1      kAnalyticSurfaceTag
//   4+n    name
//   4+n    type
//   4      fillet radius
//   ...    local coordinates, a table
//   4      number of segments
//   ...    per segment: type text, then its data as a table
void sendAnalyticSurface(const odb_AnalyticSurface& surface, int outputFd) {
  beginRecord(kAnalyticSurfaceTag);
  putString(surface.name(), 4 + 4 + 4 + 4);
  putString(surface.type(), 4 + 4 + 4);
  putF32(static_cast<float>(surface.filletRadius()));
  putTable(surface.localCoordData(), 4);
  putSegments(surface.segments());
  appendRecord(outputFd);
}

// Rigid body record, buffered.
//   offset  size  content
//   0       1     kRigidBodyTag
//   1       4     label of the reference node
//   5       4+n   name of the analytic surface
void sendRigidBodies(const odb_SequenceRigidBody& bodies, int outputFd) {
  const int n = bodies.size();
  for (int i = 0; i < n; ++i) {
    const odb_RigidBody& body = bodies[i];
    if (!sdk::hasAnalyticSurface(body)) continue;
    const odb_Set referenceSet = sdk::referenceNodesOf(body);
    const odb_SequenceNode& nodes = referenceSet.nodes();
    if (nodes.size() < 1) continue;
    beginRecord(kRigidBodyTag);
    putI32(nodes[0].label());
    putString(body.analyticSurface().name());
    appendRecord(outputFd);
  }
}

}  // namespace odbs
