// SPDX-License-Identifier: BSD-3-Clause
// The order in which results are written: frames and fields of the result file, then the tables of
// the print file, which find the frames there.
#include "importer/write/result_writer.h"

#include <algorithm>
#include <deque>
#include <unordered_set>

#include "base/printable.h"
#include "importer/results/dat_reader.h"
#include "importer/write/field_writer.h"
#include "importer/write/result_frames.h"
#include "importer/write/table_writer.h"

namespace odbs::importer {

namespace {

Vector3 turned(const Axes& axes, const double* x) {
  Vector3 sum{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t k = 0; k < 3; ++k) sum[k] += x[i] * axes[i][k];
  }
  return sum;
}

void place(const Instance& instance, Scope& mesh) {
  for (std::size_t i = 0; i < mesh.nodes.size(); ++i) {
    double* const x = mesh.nodes.xyz.data() + 3 * i;
    const Vector3 moved = turned(instance.axes, x);
    for (std::size_t k = 0; k < 3; ++k) x[k] = moved[k] + instance.translation[k];
  }
  for (Section& section : mesh.sections) {
    if (section.beamAxis.size() != 3) continue;
    const Vector3 axis = turned(instance.axes, section.beamAxis.data());
    section.beamAxis.assign(axis.begin(), axis.end());
  }
  const auto turn = [&](CoordinateSystem& system) {
    for (Vector3* const axis : {&system.xAxis, &system.yAxis, &system.zAxis}) {
      *axis = turned(instance.axes, axis->data());
    }
  };
  for (auto& [name, orientation] : mesh.orientations) {
    turn(orientation.axes);
    for (CoordinateSystem& system : orientation.systems) turn(system);
  }
}

// An instance with a mesh, in the deck and in the database.
struct Target {
  Instance* instance;
  Scope* mesh;
  odb_Instance written;
};

// Throws when a label is in two instances: the solver knows labels alone.
void checkLabels(const std::vector<Target>& targets, const char* what,
                 const std::function<void(const Scope&, std::vector<std::int32_t>&)>& add) {
  std::vector<std::int32_t> labels;
  for (const Target& target : targets) add(*target.mesh, labels);
  std::sort(labels.begin(), labels.end());
  const auto twice = std::adjacent_find(labels.begin(), labels.end());
  if (twice == labels.end()) return;
  throw ResultMismatch("the deck has several instances with " + std::string(what) + " " +
                       std::to_string(*twice) + ": results by label alone cannot be told apart");
}

// The instances that results can belong to. Coordinates of those that are moved, and directions of
// their sections, become those of the assembly.
std::vector<Target> targetsOf(Deck& deck, odb_Odb& odb) {
  std::vector<Target> targets;
  std::size_t nComposite = 0;
  for (Instance& instance : deck.instances) {
    Scope& mesh = deck.meshOf(instance);
    if (!mesh.hasMesh()) continue;
    targets.push_back({&instance, &mesh, odb.rootAssembly().instances()[instance.name.c_str()]});
    nComposite += std::any_of(mesh.sections.begin(), mesh.sections.end(), [](const Section& s) {
      return s.kind == SectionKind::compositeShell;
    });
  }
  if (targets.empty()) throw ResultMismatch("the deck has no mesh that results could belong to");
  if (targets.size() > 1) {
    checkLabels(targets, "node", [](const Scope& mesh, std::vector<std::int32_t>& labels) {
      labels.insert(labels.end(), mesh.nodes.labels.begin(), mesh.nodes.labels.end());
    });
    checkLabels(targets, "element", [](const Scope& mesh, std::vector<std::int32_t>& labels) {
      for (const ElementBlock& block : mesh.elements.blocks) {
        labels.insert(labels.end(), block.labels.begin(), block.labels.end());
      }
    });
    if (nComposite > 1) {
      throw ResultMismatch(
          "the deck has composite shells in several instances: the labels of their layers are not "
          "known");
    }
  }
  for (const Target& target : targets) {
    for (ElementBlock& block : target.mesh->elements.blocks) {
      std::vector<Place>().swap(block.places);
    }
    if (target.instance->moved) place(*target.instance, *target.mesh);
  }
  return targets;
}

std::string listed(const std::map<std::string, std::size_t>& counts) {
  std::string text;
  for (const auto& [name, n] : counts) {
    text += (text.empty() ? "" : ", ") + name + " (" + std::to_string(n) + ")";
  }
  return text;
}

// How many nodes the elements of a mesh have.
std::size_t nodesOfElements(const Scope& mesh) {
  std::unordered_set<std::int32_t> labels;
  for (const ElementBlock& block : mesh.elements.blocks) {
    labels.insert(block.nodes.begin(), block.nodes.end());
  }
  return labels.size();
}

// `matched` is called once the meshes need no more be compared.
void writeFrd(const std::string& path, const std::vector<Target>& targets, bool userNormals,
              ResultFrames& frames, ResultSummary& summary,
              const std::function<void(double)>& progress, const std::function<void()>& matched) {
  FrdReader reader(path);
  FrdIndex index = indexFrd(reader);
  const auto warn = [&](const std::string& text) {
    summary.warnings.push_back(path + ": " + printable(text));
  };
  std::vector<std::int32_t>().swap(index.elements.groups);
  if (!index.cut.empty()) {
    summary.warnings.push_back(index.cut + "; what comes before that block is imported");
  } else if (!index.complete) {
    warn("the solver did not finish this file; what it holds is imported");
  }
  MatchOptions options;
  options.userNormals = userNormals;
  for (const Target& target : targets) include(*target.mesh, options);
  std::deque<ResultMesh> matches;
  std::size_t nNodes = 0, nUnusedNodes = 0, nUnusedElements = 0, nElementsWithout = 0;
  for (const Target& target : targets) {
    const ResultMesh& match = matches.emplace_back(*target.mesh, index, options);
    if (targets.size() > 1 && !match.isInPlace()) {
      throw ResultMismatch(path + ": nodes of instance " + target.instance->name +
                           " are elsewhere there");
    }
    nNodes += match.nodeLabels().size();
    nUnusedNodes += match.nUnusedNodes();
    nUnusedElements += match.nUnusedElements();
    nElementsWithout += match.nElementsWithout();
  }
  std::size_t nDeckNodes = 0;
  for (const Target& target : targets) nDeckNodes += nodesOfElements(*target.mesh);
  if (2 * nNodes < nDeckNodes && !index.frames.empty()) {
    throw ResultMismatch(path + ": results of another model: only " + std::to_string(nNodes) +
                         " of the " + std::to_string(nDeckNodes) +
                         " nodes of the deck's elements are among its " +
                         std::to_string(index.nodes.labels.size()) + " nodes");
  }
  // What one instance does not use, another one may.
  nUnusedNodes -= (targets.size() - 1) * index.nodes.labels.size();
  nUnusedElements -= (targets.size() - 1) * index.elements.labels.size();
  std::vector<double>().swap(index.nodes.coordinates);
  index.elements = FrdElements();
  matched();
  std::vector<FieldWriter::Target> places;
  for (std::size_t i = 0; i < targets.size(); ++i) {
    places.push_back({&matches[i], targets[i].written});
  }
  FieldWriter writer(reader, index, std::move(places));
  std::map<std::string, std::size_t> unknownSteps;
  for (std::size_t i = 0; i < index.frames.size(); ++i) {
    const FrdFrame& frame = index.frames[i];
    if (!frames.has(frame)) {
      ++unknownSteps["step " + std::to_string(frame.parameters.step)];
      continue;
    }
    odb_Frame target = frames.add(frame);
    summary.nFields += writer.write(frame, target, frames.hasSectionForces(frame));
    if (progress) progress(static_cast<double>(i + 1) / static_cast<double>(index.frames.size()));
  }
  if (!unknownSteps.empty()) warn("frames of steps that the deck lacks: " + listed(unknownSteps));
  if (nUnusedNodes + nUnusedElements > 0) {
    warn("left out: " + std::to_string(nUnusedNodes) + " nodes and " +
         std::to_string(nUnusedElements) + " elements that the deck does not have");
  }
  if (nElementsWithout > 0) {
    warn("left out: values inside of " + std::to_string(nElementsWithout) +
         " beams with other profiles or normals of their own");
  }
  if (!writer.leftOut().empty()) warn("fields left out: " + listed(writer.leftOut()));
}

void writeDat(const std::string& path, const Deck& deck, const std::vector<Target>& targets,
              odb_Odb& odb, ResultFrames& frames, ResultSummary& summary) {
  DatReader reader(path);
  std::vector<TableWriter::Target> places;
  for (const Target& target : targets) places.push_back({target.mesh, target.written});
  TableWriter writer(deck, odb, places, frames);
  while (reader.next()) writer.add(reader.table());
  writer.finish();
  summary.nFields += writer.nFields();
  summary.nHistoryOutputs += writer.nHistoryOutputs();
  const auto warn = [&](const std::string& text) {
    summary.warnings.push_back(path + ": " + printable(text));
  };
  if (!writer.leftOut().empty()) warn("tables left out: " + listed(writer.leftOut()));
  if (!writer.unknownRows().empty()) {
    warn("rows left out, at labels that the deck does not have: " + listed(writer.unknownRows()));
  }
  if (!reader.unknownHeadings().empty()) {
    std::string text;
    const std::vector<std::string>& headings = reader.unknownHeadings();
    constexpr std::size_t kMost = 5;
    for (std::size_t i = 0; i < std::min(headings.size(), kMost); ++i) {
      text += (i == 0 ? "" : ", ") + ("\"" + headings[i] + "\"");
    }
    if (headings.size() > kMost) text += ", ...";
    warn("unknown tables: " + text);
  }
}

}  // namespace

ResultSummary writeResults(Deck& deck, odb_Odb& odb, const std::string& frdPath,
                           const std::string& datPath,
                           const std::function<void(double)>& progress) {
  ResultSummary summary;
  const std::vector<Target> targets = targetsOf(deck, odb);
  ResultFrames frames(deck, odb);
  const auto matched = [&] {
    for (const Target& target : targets) {
      if (datPath.empty()) target.mesh->releaseGeometry();
    }
  };
  if (!frdPath.empty()) {
    writeFrd(frdPath, targets, hasUserNormals(deck), frames, summary, progress, matched);
  }
  if (!datPath.empty()) writeDat(datPath, deck, targets, odb, frames, summary);
  summary.nFrames = frames.nFrames();
  return summary;
}

}  // namespace odbs::importer
