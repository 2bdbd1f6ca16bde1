#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/scenarios/ScenarioRunner.h"

namespace Corvane::Testing {
namespace {

/// A scenario of a file.
struct Told {
  std::string Path;
  ScenarioText Text;
};

void PrintTo(const Told& told, std::ostream* out) { *out << told.Text.Headline; }

/// The scenarios of the files that the program's arguments name.
std::vector<Told>& All() {
  static std::vector<Told> all;
  return all;
}

class Scenario : public ScenarioRunner, public ::testing::WithParamInterface<Told> {};

TEST_P(Scenario, HoldsAsTold) {
  for (const std::string& difference : Play(GetParam().Text)) ADD_FAILURE() << GetParam().Path << ", " << difference;
}

/// The headline as a test's name: "A rule's gift" becomes "A_rule_s_gift", with the place before it.
std::string NameOf(const ::testing::TestParamInfo<Told>& told) {
  std::string name = std::to_string(told.index + 1) + "_" + told.param.Text.Headline;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(File, Scenario, ::testing::ValuesIn(All()), NameOf);

/// @throws ScenarioError for a file that holds no scenarios.
void Add(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw ScenarioError(0, "can't be read");
  std::stringstream text;
  text << file.rdbuf();
  for (const ScenarioText& scenario : ScenariosOf(text.str())) All().push_back({path, scenario});
}

}  // namespace
}  // namespace Corvane::Testing

/// Plays the scenarios of the files that its arguments name.
int main(int argc, char** argv) {
  for (int place = 1; place < argc; ++place) {
    const std::string argument = argv[place];
    if (argument.compare(0, 2, "--") == 0) continue;
    try {
      Corvane::Testing::Add(std::filesystem::absolute(argument).string());
    } catch (const Corvane::Testing::ScenarioError& error) {
      std::cerr << argument << ", " << error.what() << "\n";
      return 1;
    }
  }
  if (Corvane::Testing::All().empty()) {
    std::cerr << "usage: " << argv[0] << " SCENARIOS.txt...\n";
    return 2;
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
