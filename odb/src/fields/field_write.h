// SPDX-License-Identifier: BSD-3-Clause
// What the forms of adding values have in common.
#pragma once

#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/element_shape.h"

#include <odb_embedded.h>

namespace odbs::engine {

// Adds values after checking them; throws odb_Exception, with the field unchanged, when they do not
// fit.
template <class Real>
void addValues(FieldData& field, const odb_embedded::FieldValues<Real>& values);

}  // namespace odbs::engine
