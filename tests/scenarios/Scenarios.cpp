#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/scenarios/ScenarioRunner.h"

namespace Corvane::Testing {
namespace {

/// The files to play, as the program's arguments name them.
std::vector<std::string>& Paths() {
  static std::vector<std::string> paths;
  return paths;
}

/// One scenario file as one test.
class Scenario : public ScenarioRunner, public ::testing::WithParamInterface<std::string> {};

TEST_P(Scenario, HoldsAsTold) {
  std::ifstream file(GetParam());
  ASSERT_TRUE(file) << "can't read " << GetParam();
  std::stringstream text;
  text << file.rdbuf();
  for (const std::string& difference : Play(text.str())) ADD_FAILURE() << GetParam() << ", " << difference;
}

INSTANTIATE_TEST_SUITE_P(File, Scenario, ::testing::ValuesIn(Paths()));

}  // namespace
}  // namespace Corvane::Testing

/// Plays the scenario files that its arguments name.
int main(int argc, char** argv) {
  std::vector<std::string>& paths = Corvane::Testing::Paths();
  for (int place = 1; place < argc; ++place) {
    const std::string argument = argv[place];
    const bool isOption = argument.compare(0, 2, "--") == 0;
    if (!isOption) paths.push_back(std::filesystem::absolute(argument).string());
  }
  if (paths.empty()) {
    std::cerr << "usage: " << argv[0] << " SCENARIO.txt...\n";
    return 2;
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
