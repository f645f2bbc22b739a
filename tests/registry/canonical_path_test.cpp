// SPDX-License-Identifier: BSD-3-Clause
// Canonical paths, where no drive is mapped.
#include "registry/canonical_path.h"

#include <gtest/gtest.h>

namespace odbs {
namespace {

TEST(CanonicalPath, TurnsSlashesIntoBackslashes) {
  EXPECT_EQ(canonicalPath("/a/b c/d.odb"), "\\a\\b c\\d.odb");
  EXPECT_EQ(canonicalPath("/a\\b/c"), canonicalPath("\\a/b\\c"));
  EXPECT_EQ(canonicalPath(""), "");
}

TEST(CanonicalPath, KeepsUniversalAndDevicePaths) {
  EXPECT_EQ(canonicalPath("//host/share/x.odb"), "\\\\host\\share\\x.odb");
  EXPECT_EQ(canonicalPath("\\\\.\\pipe/x"), "\\\\.\\pipe\\x");
  EXPECT_EQ(canonicalPath("//"), "\\\\");
}

}  // namespace
}  // namespace odbs
