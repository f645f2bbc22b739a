// SPDX-License-Identifier: BSD-3-Clause
// Everything but the material and section classes (odb_MaterialTypes.h, odb_SectionTypes.h).
#pragma once

#include <nex_Exception.h>
#include <odb_Enum.h>
#include <odb_FieldOutput.h>
#include <odb_HistoryRegion.h>
#include <odb_Odb.h>
#include <odb_OdbRepository.h>
#include <odb_Section.h>
#include <odb_Union.h>
