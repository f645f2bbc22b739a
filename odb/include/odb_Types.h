// SPDX-License-Identifier: BSD-3-Clause
// Another name for the header that brings the whole API.
#pragma once
#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
