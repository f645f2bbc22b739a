// SPDX-License-Identifier: BSD-3-Clause
// The result catalogue: every combination of step, frame and field output that a listing covers.
#pragma once

#include <odb_API.h>

#include "catalogue/catalogue_records.h"

namespace odbs {

// Answers one listing of `odb`: from the catalogue cache file when a cache path is set and the file
// matches, else from the database, writing a new cache file where a path is set. A computed listing
// clears the cache path, a replayed one keeps it. Reads the frame mode of the server state. Throws
// what the database library throws; what was listed before stays sent.
void sendCatalogue(odb_Odb& odb, int outputFd, CatalogueListing listing);

}  // namespace odbs
