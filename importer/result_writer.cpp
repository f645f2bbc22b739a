// SPDX-License-Identifier: BSD-3-Clause
// The order in which results are written: frames and fields of the result file, then the tables of
// the print file, which find the frames there.
#include "importer/result_writer.h"

#include <algorithm>
#include <memory>

#include "importer/dat_reader.h"
#include "importer/field_writer.h"
#include "importer/result_frames.h"
#include "importer/table_writer.h"

namespace odbs::importer {

namespace {

// The instance that the solver's labels are of. The solver knows no parts: labels of a deck with
// several instances say nothing.
Instance& onlyInstance(Deck& deck) {
  Instance* found = nullptr;
  for (Instance& instance : deck.instances) {
    if (!deck.meshOf(instance).hasMesh()) continue;
    if (found != nullptr) {
      throw ResultMismatch(
          "the deck has several instances with meshes: results by label alone cannot be told "
          "apart");
    }
    found = &instance;
  }
  if (found == nullptr) throw ResultMismatch("the deck has no mesh that results could belong to");
  return *found;
}

std::string listed(const std::map<std::string, std::size_t>& counts) {
  std::string text;
  for (const auto& [name, n] : counts) {
    text += (text.empty() ? "" : ", ") + name + " (" + std::to_string(n) + ")";
  }
  return text;
}

// `matched` is called once the meshes need no more be compared.
void writeFrd(const std::string& path, const Scope& mesh, bool userNormals,
              const odb_Instance& instance, ResultFrames& frames, ResultSummary& summary,
              const std::function<void(double)>& progress, const std::function<void()>& matched) {
  FrdReader reader(path);
  FrdIndex index = indexFrd(reader);
  const auto warn = [&](const std::string& text) {
    summary.warnings.push_back(path + ": " + text);
  };
  std::vector<std::int32_t>().swap(index.elements.groups);
  if (!index.complete) warn("the solver did not finish this file; what it holds is imported");
  const ResultMesh match(mesh, index, userNormals);
  if (match.nodeLabels().empty() && !index.frames.empty()) {
    throw ResultMismatch(path + ": none of its nodes is one of the deck");
  }
  std::vector<double>().swap(index.nodes.coordinates);
  index.elements = FrdElements();
  matched();
  FieldWriter writer(reader, index, match, instance);
  std::map<std::string, std::size_t> unknownSteps;
  for (std::size_t i = 0; i < index.frames.size(); ++i) {
    const FrdFrame& frame = index.frames[i];
    if (!frames.has(frame)) {
      ++unknownSteps["step " + std::to_string(frame.parameters.step)];
      continue;
    }
    odb_Frame target = frames.add(frame);
    summary.nFields += writer.write(frame, target);
    if (progress) progress(static_cast<double>(i + 1) / static_cast<double>(index.frames.size()));
  }
  if (!unknownSteps.empty()) warn("frames of steps that the deck lacks: " + listed(unknownSteps));
  if (match.nUnusedNodes() + match.nUnusedElements() > 0) {
    warn("left out: " + std::to_string(match.nUnusedNodes()) + " nodes and " +
         std::to_string(match.nUnusedElements()) + " elements that the deck does not have");
  }
  if (match.nElementsWithout() > 0) {
    warn("left out: values inside of " + std::to_string(match.nElementsWithout()) +
         " beams with pipe or box profiles or normals of their own");
  }
  if (!writer.leftOut().empty()) warn("fields left out: " + listed(writer.leftOut()));
}

void writeDat(const std::string& path, const Deck& deck, const Scope& mesh, odb_Odb& odb,
              const odb_Instance& instance, ResultFrames& frames, ResultSummary& summary) {
  DatReader reader(path);
  TableWriter writer(deck, mesh, odb, instance, frames);
  while (reader.next()) writer.add(reader.table());
  writer.finish();
  summary.nFields += writer.nFields();
  summary.nHistoryOutputs += writer.nHistoryOutputs();
  if (!writer.leftOut().empty()) {
    summary.warnings.push_back(path + ": tables left out: " + listed(writer.leftOut()));
  }
  if (!reader.unknownHeadings().empty()) {
    std::string text;
    const std::vector<std::string>& headings = reader.unknownHeadings();
    constexpr std::size_t kMost = 5;
    for (std::size_t i = 0; i < std::min(headings.size(), kMost); ++i) {
      text += (i == 0 ? "" : ", ") + ("\"" + headings[i] + "\"");
    }
    if (headings.size() > kMost) text += ", ...";
    summary.warnings.push_back(path + ": unknown tables: " + text);
  }
}

}  // namespace

ResultSummary writeResults(Deck& deck, odb_Odb& odb, const std::string& frdPath,
                           const std::string& datPath,
                           const std::function<void(double)>& progress) {
  ResultSummary summary;
  Instance& instance = onlyInstance(deck);
  Scope& mesh = deck.meshOf(instance);
  const odb_Instance written = odb.rootAssembly().instances()[instance.name.c_str()];
  for (ElementBlock& block : mesh.elements.blocks) std::vector<Place>().swap(block.places);
  ResultFrames frames(deck, odb);
  const auto matched = [&] {
    if (datPath.empty()) mesh.releaseGeometry();
  };
  if (!frdPath.empty()) {
    writeFrd(frdPath, mesh, hasUserNormals(deck), written, frames, summary, progress, matched);
  }
  if (!datPath.empty()) writeDat(datPath, deck, mesh, odb, written, frames, summary);
  summary.nFrames = frames.nFrames();
  return summary;
}

}  // namespace odbs::importer
