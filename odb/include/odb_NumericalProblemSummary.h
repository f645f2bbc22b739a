// SPDX-License-Identifier: BSD-3-Clause
// What the solver noted of numerical problems. This library stores none; the class is here for
// programs that include it.
#pragma once

class odb_NumericalProblemSummary {};
