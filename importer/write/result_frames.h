// SPDX-License-Identifier: BSD-3-Clause
// The steps and frames of a database, found or made for results that say when they were computed:
// by step and increment (result files), or by total time alone (print files).
#pragma once

#include <odb_API.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/results/frd_index.h"

namespace odbs::importer {

class ResultFrames {
 public:
  // The steps of `odb` are those of `deck`, in its order.
  ResultFrames(const Deck& deck, odb_Odb& odb);

  // True when the deck has the step of a frame of a result file. A frame that names none is of the
  // first step.
  bool has(const FrdFrame& frame) const { return stepNumber(frame) <= nSteps(); }

  // True when stresses of beams in such a frame are forces and moments of the section.
  bool hasSectionForces(const FrdFrame& frame) const {
    return steps_[static_cast<std::size_t>(stepNumber(frame) - 1)].sectionForces;
  }

  // A new frame for it.
  odb_Frame add(const FrdFrame& frame);

  // What the headings of a print file say of the step that the next tables belong to. Each moves on
  // to the next step that fits, if there is one; a step stays current until then. `nodalDiameter`
  // is that of the modes, -1 when they have none: a cyclic step has a table for each.
  void enterModes(bool buckling, int nodalDiameter);
  void enterHarmonic();

  // A mode of the current step as a table of eigenvalues gives it: what a frame needs that is made
  // for it later. `nodalDiameter` is -1 for a mode without one.
  void announceMode(int mode, double value, int nodalDiameter);

  // Where a table belongs.
  struct Moment {
    int step = -1;           // index in the deck; -1: nowhere
    double time = 0;         // as printed: total time, frequency
    double x = 0;            // step time, frequency, or mode
    int nodalDiameter = -1;  // of the mode
  };
  // The moment of a table with total time (or frequency) `time` that was printed for mode `mode`
  // (0: for none). Becomes the current step.
  Moment at(double time, int mode);

  // The frame of a moment, made at the end of its step when the step has none for it. Nothing when
  // a new frame would not be the last one of its step, or the moment is nowhere.
  std::optional<odb_Frame> frameOf(const Moment& moment);

  odb_Step& step(int index) { return steps_[static_cast<std::size_t>(index)].step; }
  int nSteps() const { return static_cast<int>(steps_.size()); }
  // Index of the current step.
  int current() const { return current_; }
  Domain domain(int index) const { return steps_[static_cast<std::size_t>(index)].domain; }
  std::size_t nFrames() const { return nFrames_; }

 private:
  struct Slot {
    odb_Step step;
    Domain domain = Domain::time;
    bool entered = false;  // by a heading of a print file
    bool buckling = false;
    bool ownTime = false, sectionForces = false;  // see Step
    bool endsAtZero = false;                      // total time is negative during the step
    double start = 0, end = 0;                    // total time
    bool ascending = true;                        // the values of the frames
    std::vector<double> values;                   // of the frames: step time, frequency, mode
    std::vector<odb_Frame> frames;
    std::vector<int> diameters;  // of the frames' modes; -1: without
    int lastIncrement = 0;
    int diameter = -1, lastDiameter = -1;  // of the last heading, and the largest of the step
    std::map<std::pair<int, int>, double> modes;  // announced values by nodal diameter and mode
  };
  static int stepNumber(const FrdFrame& frame) {
    return frame.parameters.step > 0 ? frame.parameters.step : 1;
  }
  static double stepTime(Slot& slot, double total);
  template <class Fits>
  bool enter(Fits fits);
  odb_Frame make(Slot& slot, double x, double value, const FrdParameters& parameters);

  std::vector<Slot> steps_;
  int current_ = 0;
  std::size_t nFrames_ = 0;
};

}  // namespace odbs::importer
