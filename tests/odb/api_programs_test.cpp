// SPDX-License-Identifier: BSD-3-Clause
// Runs the two programs that are written as users write them, and compares what they print.
#include "port/port.h"
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace odbs::test {
namespace {

struct Outcome {
  int status = -1;
  std::string output;
};

// The programs get the writing end as their standard output by way of a shell-free child: their
// output is short enough for the pipe, and is read after the end.
Outcome run(const std::string& name, const std::string& argument, const std::string& outFile) {
  const std::string suffix = std::filesystem::path(port::executablePath()).extension().string();
  std::string command = "\"" + std::string(ODBS_BIN_DIR) + "/" + name + suffix + "\" \"" +
                        argument + "\" > \"" + outFile + "\"";
#ifdef _WIN32
  command = "\"" + command + "\"";  // cmd takes one pair of quotes away
#endif
  Outcome outcome;
  outcome.status = std::system(command.c_str());
  std::ifstream in(outFile);
  outcome.output.assign(std::istreambuf_iterator<char>(in), {});
  return outcome;
}

TEST(UserPrograms, WriteADatabaseAndReadItBack) {
  TempFolder folder;
  const std::string path = folder.file("simple model.odb");
  const Outcome written = run("api_write_program", path, folder.file("out.txt"));
  EXPECT_EQ(written.status, 0);
  EXPECT_EQ(written.output.substr(0, 7), "written");
  const Outcome read = run("api_read_program", path, folder.file("out.txt"));
  EXPECT_EQ(read.status, 0);
  EXPECT_EQ(read.output,
            "title ODB created with C++ API / 0 / end\n"
            "instance part-1-1\n"
            "node 1 1 0 0 0 of 3\n"
            "node 2 2 0 1 0 of 3\n"
            "node 3 3 1 1 0 of 3\n"
            "node 4 4 1 0 0 of 3\n"
            "element 1 S4 S5 1 2 3 4 point 1 point 5\n"
            "set corner of 2\n"
            "set nodes-1 of 4\n"
            "assigned Homogeneous Solid Section to 1\n"
            "solid of Elastic Material 2\n"
            "elastic ISOTROPIC 12000\n"
            "tie glue assembly set 0.5 adjusted\n"
            "rigid body at CENTER_OF_MASS\n"
            "field U\n"
            "last step step-1 3\n"
            "no member named \"no such step\" / 1\n");
}

TEST(UserPrograms, EndWithStatusOneWhenTheLibraryThrows) {
  TempFolder folder;
  EXPECT_NE(run("api_read_program", folder.file("none.odb"), folder.file("out.txt")).status, 0);
  EXPECT_NE(
      run("api_write_program", folder.file("no folder/none.odb"), folder.file("out.txt")).status,
      0);
}

}  // namespace
}  // namespace odbs::test
