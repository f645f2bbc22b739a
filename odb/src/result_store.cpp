// SPDX-License-Identifier: BSD-3-Clause
// The result side's part in opening and saving a database.
#include "odb/src/steps.h"

namespace odbs::engine {

void openResults(Database&, FileReader&) {}
void saveResults(Database&, Saver&) {}
void resultsSaved(Database&) {}
void releaseFields(FrameData&) {}

}  // namespace odbs::engine
