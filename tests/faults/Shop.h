#ifndef QNCORVANE_TESTS_FAULTS_SHOP_H
#define QNCORVANE_TESTS_FAULTS_SHOP_H

#include <cstddef>
#include <string>
#include <string_view>

/// The sample store's shop, with rules of all fifteen types, and one sale that each of them gives something to. All of
/// it goes through the exported calls and needs no memory of its own once it is read.
namespace faults {

/// One call of the engine. The steps follow each other as a till makes them, and use all eight calls and all modes.
struct Step {
  const char* Name;
  int (*Run)();
};

/// How many steps there are; the last of them forget the sales and the rules.
std::size_t StepCount();
const Step& StepAt(std::size_t place);

/// Reads the rules' files in the current directory. @return whether all are there.
bool ReadShop();

/// Forgets rules and sales, whatever state the engine is in. @return whether each call was a success.
bool Clean();

/// Runs all steps from a clean engine, and writes all results and messages behind each other.
///
/// @return null when each was a success, otherwise the first step that was none.
const char* WholeTill();

/// The same in two parts: the steps before `place`, and the others.
const char* BeginTill(std::size_t place);
const char* FinishTill(std::size_t place);

/// What the last till wrote. Lives until the next.
std::string_view Results();

/// The message and the result of the last call.
const char* LastMessage();
const char* LastResult();

/// Whether the results hold something of each rule of the shop. @param missing out: the first that gave nothing.
bool EachRuleGives(std::string_view results, std::string& missing);

}  // namespace faults

#endif
