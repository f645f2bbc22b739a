// SPDX-License-Identifier: BSD-3-Clause
// Gathering the blocks of a result file into frames.
#include "importer/results/frd_index.h"

#include <iterator>

namespace odbs::importer {

namespace {

template <typename T>
void append(std::vector<T>& to, std::vector<T>& from) {
  if (to.empty()) {
    to = std::move(from);
  } else {
    to.insert(to.end(), from.begin(), from.end());
  }
}

bool belongsTo(const FrdFrame& frame, const FrdResult& result) {
  const FrdParameters& a = frame.parameters;
  const FrdParameters& b = result.parameters;
  return frame.value == result.value && frame.analysis == result.analysis && a.step == b.step &&
         a.increment == b.increment && a.mode == b.mode &&
         a.hasNodalDiameter == b.hasNodalDiameter && a.nodalDiameter == b.nodalDiameter &&
         frame.fields.back().head.number == result.number;
}

}  // namespace

FrdIndex indexFrd(FrdReader& reader) {
  using Block = FrdReader::Block;
  FrdIndex index;
  const auto next = [&] {
    try {
      return reader.skim();
    } catch (const ResultFileCut& cut) {
      if (index.frames.empty()) throw;
      index.cut = cut.what();
      return Block::end;
    }
  };
  for (Block block = next(); block != Block::end; block = next()) {
    if (block == Block::nodes) {
      append(index.nodes.labels, reader.nodes().labels);
      append(index.nodes.coordinates, reader.nodes().coordinates);
    } else if (block == Block::elements) {
      FrdElements& elements = reader.elements();
      append(index.elements.labels, elements.labels);
      append(index.elements.types, elements.types);
      append(index.elements.groups, elements.groups);
      append(index.elements.nodes, elements.nodes);
    } else {
      FrdResult& result = reader.result();
      if (index.frames.empty() || !belongsTo(index.frames.back(), result)) {
        index.frames.push_back({result.analysis, result.value, result.parameters, {}});
      }
      index.frames.back().fields.push_back({std::move(result), reader.place()});
    }
  }
  index.complete = reader.complete();
  return index;
}

}  // namespace odbs::importer
