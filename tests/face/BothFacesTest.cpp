#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "qncorvane/qncorvane.h"
#include "tests/face/Face.h"

namespace Corvane::Testing {
namespace {

namespace fs = std::filesystem;

/// A step of a walk: mode and file, as in samples/walks.txt.
struct Step {
  std::string Mode;
  std::string Xml;
};

std::vector<Step> StepsOf(const std::string& words) {
  std::vector<Step> steps;
  std::istringstream stream(words);
  for (std::string word; std::getline(stream, word, ',');) {
    word.erase(0, word.find_first_not_of(' '));
    word.erase(word.find_last_not_of(' ') + 1);
    const std::size_t equals = word.find('=');
    const bool hasFile = equals != std::string::npos;
    steps.push_back({word.substr(0, equals), hasFile ? Sample("sales/" + word.substr(equals + 1)) : "<Sale/>"});
  }
  return steps;
}

std::vector<std::vector<Step>> Walks() {
  std::vector<std::vector<Step>> walks;
  std::istringstream lines(Sample("walks.txt"));
  for (std::string line; std::getline(lines, line);) {
    const std::size_t bar = line.rfind('|');
    if (line.empty() || line.front() == '#' || bar == std::string::npos) continue;
    walks.push_back(StepsOf(line.substr(bar + 1)));
  }
  return walks;
}

void LoadByTheEightCalls(const StoreFolder& store) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::directory_iterator(store / "rules")) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  EXPECT_EQ(BeginInitPro(), 0);
  for (const fs::path& file : files) {
    const std::string xml = store.Read("rules/" + file.filename().string());
    std::string type = file.filename().string().substr(0, 4);
    if (type == "MZZQ") type = "MZYQ";
    std::vector<char> message(xml.size() + 100);
    EXPECT_EQ(InitPromotion(type.c_str(), xml.c_str(), message.data()), 0) << file;
  }
  EXPECT_EQ(FinishInitPro(), 0);
}

TEST(BothFaces, GiveTheSameBytesSideBySide) {
  const StoreFolder own;
  const StoreFolder store;
  fs::current_path(own.Path());
  LoadByTheEightCalls(own);
  const OpenEngine engine(store.Path());
  ASSERT_EQ(engine.LoadRules().Code, QNC_OK);

  const auto room = std::make_unique<char[]>(4U << 20U);
  int steps = 0;
  int walk = 0;
  for (const std::vector<Step>& one : Walks()) {
    const std::string key = std::to_string(++walk);
    for (const Step& step : one) {
      char message[64] = "";
      const int code = CalcPromotion(key.c_str(), step.Mode.c_str(), step.Xml.c_str(), room.get(), message);
      const Told told = engine.Calculate(key, step.Mode, step.Xml);
      EXPECT_EQ(told.Code == QNC_OK, code == 0) << step.Mode << ": " << told.Error;
      if (code == 0) {
        EXPECT_EQ(told.Text, room.get());
      }
      ++steps;
    }
  }
  EXPECT_GE(steps, 20);
  EXPECT_EQ(own.Read("QnCorvane.txt").size() > 1000, true);
  fs::current_path("/");
}

}  // namespace
}  // namespace Corvane::Testing
