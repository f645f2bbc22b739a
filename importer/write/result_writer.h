// SPDX-License-Identifier: BSD-3-Clause
// Puts a solver's results into a database that already holds the deck's model and steps.
#pragma once

#include <odb_API.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "importer/deck/deck.h"

namespace odbs::importer {

// What was written, for the closing line.
struct ResultSummary {
  std::size_t nFrames = 0;
  std::size_t nFields = 0;            // of all frames
  std::size_t nHistoryOutputs = 0;    // of all steps
  std::vector<std::string> warnings;  // what was left out, one line each
};

// Results that do not fit the deck at all.
class ResultMismatch : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads a result file (.frd), a print file (.dat), or both (an empty path: none) and adds frames,
// fields and histories to the steps of `odb`, to which writeModel has written `deck`. Nothing is
// saved. `progress` hears the done part, 0 to 1.
//
// Values keep the solver's sign and units; tensors get the database's order of components. Field
// values at nodes come from the result file; so do those of element variables (stresses, strains,
// ...), which are the solver's averages at nodes, given at the nodes of elements. Tables at
// integration points become field values there, other tables histories. Results of a frequency
// response have conjugate parts. What has no place in the deck is left out and counted in the
// warnings.
//
// The deck is read, and without a print file its mesh keeps its labels alone: a result file needs
// coordinates and connectivity only until it is matched with the deck.
//
// Throws ResultFileError for a broken file, ResultMismatch for one that belongs to another deck,
// and what the API throws.
ResultSummary writeResults(Deck& deck, odb_Odb& odb, const std::string& frdPath,
                           const std::string& datPath,
                           const std::function<void(double)>& progress = {});

}  // namespace odbs::importer
