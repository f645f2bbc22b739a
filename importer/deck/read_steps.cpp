// SPDX-License-Identifier: BSD-3-Clause
// *HEADING, steps and their procedures.
#include <algorithm>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

struct Procedure {
  std::string_view name;  // without blanks
  std::string_view text;  // as the database shows it
  Domain domain;
  int periodField;  // field of the first data line that holds the time period; -1: none
};

constexpr Procedure kProcedures[] = {
    {"STATIC", "*STATIC", Domain::time, 1},
    {"VISCO", "*VISCO", Domain::time, 1},
    {"DYNAMIC", "*DYNAMIC", Domain::time, 1},
    {"FREQUENCY", "*FREQUENCY", Domain::modal, -1},
    {"COMPLEXFREQUENCY", "*COMPLEX FREQUENCY", Domain::modal, -1},
    {"BUCKLE", "*BUCKLE", Domain::modal, -1},
    {"MODALDYNAMIC", "*MODAL DYNAMIC", Domain::time, 1},
    {"STEADYSTATEDYNAMICS", "*STEADY STATE DYNAMICS", Domain::frequency, -1},
    {"RANDOMRESPONSE", "*RANDOM RESPONSE", Domain::frequency, -1},
    {"RESPONSESPECTRUM", "*RESPONSE SPECTRUM", Domain::time, -1},
    {"HEATTRANSFER", "*HEAT TRANSFER", Domain::time, 1},
    {"COUPLEDTEMPERATURE-DISPLACEMENT", "*COUPLED TEMPERATURE-DISPLACEMENT", Domain::time, 1},
    {"UNCOUPLEDTEMPERATURE-DISPLACEMENT", "*UNCOUPLED TEMPERATURE-DISPLACEMENT", Domain::time, 1},
    {"COUPLEDTHERMAL-ELECTRICAL", "*COUPLED THERMAL-ELECTRICAL", Domain::time, 1},
    {"DYNAMICTEMPERATURE-DISPLACEMENT", "*DYNAMIC TEMPERATURE-DISPLACEMENT", Domain::time, 1},
    {"ELECTROMAGNETICS", "*ELECTROMAGNETICS", Domain::time, 1},
    {"GEOSTATIC", "*GEOSTATIC", Domain::time, 1},
    {"SOILS", "*SOILS", Domain::time, 1},
    {"MASSDIFFUSION", "*MASS DIFFUSION", Domain::time, 1},
    {"SUBSTRUCTUREGENERATE", "*SUBSTRUCTURE GENERATE", Domain::time, -1},
    {"MATRIXGENERATE", "*MATRIX GENERATE", Domain::time, -1},
    {"STEADYSTATETRANSPORT", "*STEADY STATE TRANSPORT", Domain::time, 1},
    {"ANNEAL", "*ANNEAL", Domain::time, 0},
    {"CFD", "*CFD", Domain::time, 1},
    {"GREEN", "*GREEN", Domain::modal, -1},
    {"SENSITIVITY", "*SENSITIVITY", Domain::time, -1},
    {"CRACKPROPAGATION", "*CRACK PROPAGATION", Domain::time, 1},
    {"NOANALYSIS", "*NO ANALYSIS", Domain::time, -1},
};

constexpr std::size_t kMaxDescription = 4096;

}  // namespace

// The first line is the title, as solvers print it on every page.
void DeckParser::readHeading(const Keyword&) {
  std::string_view line;
  if (deck_.title.empty() && lines_.dataLine(line)) deck_.title = std::string(trimmed(line));
}

void DeckParser::readStep(const Keyword& keyword) {
  if (level_ == Level::part || level_ == Level::instance) {
    lines_.fail(keyword.place, "*STEP inside of a part or an instance");
  }
  if (inStep_) lines_.fail(keyword.place, "*STEP inside of a step");
  inStep_ = true;
  Step step;
  const Parameter* name = keyword.find("NAME");
  // Unlike other names, those of steps keep their case.
  step.name =
      name && !name->raw.empty() ? name->raw : "Step-" + std::to_string(deck_.steps.size() + 1);
  const auto taken = [&](const std::string& text) {
    return std::any_of(deck_.steps.begin(), deck_.steps.end(),
                       [&](const Step& s) { return s.name == text; });
  };
  if (taken(step.name)) lines_.fail(keyword.place, "step " + step.name + " is defined twice");
  step.perturbation = keyword.has("PERTURBATION");
  // Large displacements stay switched on from step to step.
  const bool before = !deck_.steps.empty() && deck_.steps.back().nlgeom;
  const std::string& nlgeom = keyword.value("NLGEOM");
  step.nlgeom = keyword.has("NLGEOM") ? nlgeom != "NO" : before;
  // So do requests, until there are new ones.
  step.sectionForces = !deck_.steps.empty() && deck_.steps.back().sectionForces;
  std::string_view line;
  while (lines_.dataLine(line) && step.description.size() < kMaxDescription) {
    if (!step.description.empty()) step.description += ' ';
    step.description += trimmed(line);
  }
  deck_.steps.push_back(std::move(step));
}

void DeckParser::readEndStep(const Keyword& keyword) {
  if (!inStep_) warn(keyword.place, "*END STEP without *STEP");
  inStep_ = false;
}

void DeckParser::readProcedure(const Keyword& keyword) {
  // Outside of steps the word is another keyword's business.
  if (!inStep_) {
    ignore(keyword);
    return;
  }
  Step& step = deck_.steps.back();
  if (!step.procedure.empty()) {
    ignore(keyword);
    return;
  }
  const auto found = std::find_if(std::begin(kProcedures), std::end(kProcedures),
                                  [&](const Procedure& p) { return p.name == keyword.name; });
  step.procedure = found->text;
  step.domain = found->domain;
  int periodField = found->periodField;
  if (keyword.has("EXPLICIT") && startsWith(keyword.name, "DYNAMIC")) {
    deck_.isExplicit = true;
    step.procedure += ", EXPLICIT";
    if (!keyword.has("DIRECT")) step.nlgeom = true;
  }
  if (keyword.has("FREQUENCY") && keyword.name == "HEATTRANSFER") {
    step.procedure += ", FREQUENCY";  // modes of the acoustic or thermal problem
    step.domain = Domain::modal;
  }
  if (keyword.has("RIKS")) {
    step.procedure += ", RIKS";
    step.domain = Domain::arcLength;
  }
  if (keyword.name == "STEADYSTATEDYNAMICS" && keyword.has("DIRECT")) step.procedure += ", DIRECT";
  if (keyword.name == "STEADYSTATEDYNAMICS" && keyword.value("HARMONIC") == "NO") {
    step.procedure += ", HARMONIC=NO";
    step.domain = Domain::time;
    step.ownTime = true;
    periodField = 6;  // the end of the period
  }

  std::string_view line;
  std::vector<double> values;
  if (periodField >= 0 && lines_.dataLine(line)) {
    Fields fields(line);
    for (std::string_view field;
         values.size() <= static_cast<std::size_t>(periodField) && fields.next(field);) {
      values.push_back(realOf(field));
    }
  }
  if (step.domain != Domain::time || step.perturbation || periodField < 0) return;
  const auto at = static_cast<std::size_t>(periodField);
  step.timePeriod = at < values.size() && values[at] > 0 ? values[at] : 1.0;
}

}  // namespace odbs::importer
