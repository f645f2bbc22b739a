// SPDX-License-Identifier: BSD-3-Clause
// The adapter's vendor variant, compiled and run against the embedded library, which offers the
// documented names that it uses. What this cannot show is that the SDK has them too.
#define ODBS_SDK 1
#include "server/core/sdk_adapter.h"

#include <gtest/gtest.h>

#include "tests/support/databases.h"
#include "tests/support/server_process.h"

namespace odbs {
namespace {

class VendorAdapter : public testing::Test {
 protected:
  VendorAdapter() { tests::makeDatabase(path); }
  tests::TemporaryFolder folder;
  const std::string path = folder.file("a.odb");
  sdk::Repository& repository = sdk::openDatabases();
};

TEST_F(VendorAdapter, KeepsTheOpenDatabasesByPath) {
  EXPECT_FALSE(sdk::isOpen(repository, path));
  odb_Odb& odb = sdk::openReadOnly(repository, path);
  EXPECT_TRUE(sdk::isOpen(repository, path));
  EXPECT_EQ(&sdk::database(repository, path), &odb);
  EXPECT_EQ(sdk::keyOf(odb), path);
  EXPECT_EQ(sdk::openKeys(repository), std::vector<std::string>{path});
  sdk::close(repository, odb);
  EXPECT_EQ(sdk::nOpen(repository), 0);
  EXPECT_THROW(sdk::database(repository, path), std::exception);
}

TEST_F(VendorAdapter, ClosesAllAtExit) {
  odb_Odb& odb = sdk::openReadOnly(repository, path);
  sdk::closeAllAtExit();
  EXPECT_TRUE(odb.isClosed());
  repository.databases.clear();
}

TEST_F(VendorAdapter, ConvertsTheExceptionsOfTheLibraryAndLetsOthersPass) {
  EXPECT_THROW(sdk::guarded([] { throw odb_BaseException("b"); }), sdk::SdkError);
  EXPECT_THROW(sdk::guarded([] { throw nex_Exception("n"); }), sdk::SdkError);
  EXPECT_THROW(sdk::guarded([] { throw odb_Exception("o"); }), sdk::SdkError);
  EXPECT_THROW(sdk::guarded([] { throw 5; }), int);
  EXPECT_THROW(sdk::guarded([] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_THROW(sdk::openReadOnly(repository, folder.file("missing.odb")), std::exception);
  EXPECT_EQ(sdk::guarded([] { return 7; }), 7);
}

TEST_F(VendorAdapter, FindsNoAnnotationAndNoSurfaceWhereThereIsNone) {
  odb_Odb& odb = sdk::openReadOnly(repository, path);
  EXPECT_EQ(sdk::annotationText(odb, "xml"), "");
  EXPECT_FALSE(sdk::hasCsys1(odb_ConnectorOrientation()));
  EXPECT_FALSE(sdk::hasCsys2(odb_ConnectorOrientation()));
  EXPECT_FALSE(sdk::hasAnalyticSurface(odb_RigidBody()));
  sdk::close(repository, odb);
}

}  // namespace
}  // namespace odbs
