#include "CommandLine.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ToolError.h"

namespace Corvane::Tool {
namespace {

constexpr std::array<std::string_view, 8> kModes = {"Single",      "All",  "Union", "Zh",
                                                    "MzPromotion", "Gift", "Pay",   "Coupon"};

[[noreturn]] void RefuseUsage(const std::string& text) {
  throw ToolError(text + "\nTry 'qncorvane --help'.", ToolError::kUsage);
}

void RequireKnownMode(const std::string& mode) {
  if (std::find(kModes.begin(), kModes.end(), mode) != kModes.end()) return;
  std::string known;
  for (const std::string_view name : kModes) known.append(known.empty() ? "" : ", ").append(name);
  RefuseUsage("unknown mode '" + mode + "'; the modes are " + known);
}

Step ParseStep(const std::string& text) {
  const std::size_t equals = text.find('=');
  Step step{text.substr(0, equals), {}};
  RequireKnownMode(step.mode);
  if (equals == std::string::npos) return step;
  if (equals + 1 == text.size()) RefuseUsage("no file behind '" + text + "'");
  step.saleFile = std::filesystem::absolute(text.substr(equals + 1));
  return step;
}

std::vector<Step> ParseSteps(const std::string& text) {
  std::vector<Step> steps;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    steps.push_back(ParseStep(text.substr(begin, comma - begin)));
    begin = comma + 1;
  }
  return steps;
}

/// The arguments behind "calc", taken one after the other.
class ArgumentReader {
 public:
  explicit ArgumentReader(const std::vector<std::string>& arguments) : m_arguments(arguments) {}

  [[nodiscard]] bool AtEnd() const { return m_next == m_arguments.size(); }
  const std::string& Take() { return m_arguments[m_next++]; }
  const std::string& TakeValue(const std::string& option) {
    if (AtEnd()) RefuseUsage(option + " needs a value");
    return Take();
  }

 private:
  const std::vector<std::string>& m_arguments;
  std::size_t m_next = 1;
};

struct Parsed {
  CommandLine line;
  std::filesystem::path firstSale;
  bool resultFileGiven = false;
};

void TakeArgument(ArgumentReader& reader, Parsed& parsed) {
  const std::string& argument = reader.Take();
  if (argument == "--help" || argument == "-h") {
    parsed.line.help = true;
  } else if (argument == "--xml") {
    parsed.line.rawResult = true;
  } else if (argument == "--store") {
    parsed.line.store = std::filesystem::absolute(reader.TakeValue(argument));
  } else if (argument == "--mode") {
    parsed.line.steps = ParseSteps(reader.TakeValue(argument));
  } else if (argument == "--key") {
    parsed.line.key = reader.TakeValue(argument);
  } else if (argument == "--out") {
    parsed.line.resultFile = std::filesystem::absolute(reader.TakeValue(argument));
    parsed.resultFileGiven = true;
  } else if (argument.rfind("--", 0) == 0) {
    RefuseUsage("unknown option '" + argument + "'");
  } else if (parsed.firstSale.empty()) {
    parsed.firstSale = std::filesystem::absolute(argument);
  } else {
    RefuseUsage("more than one SALE.xml; give the files of later steps as MODE=FILE");
  }
}

void RequireComplete(const Parsed& parsed) {
  if (parsed.line.store.empty()) RefuseUsage("--store DIR is missing");
  if (parsed.line.steps.empty()) RefuseUsage("--mode MODE is missing");
  if (parsed.line.key.empty()) RefuseUsage("--key must not be empty");
  const bool firstStepHasFile = !parsed.line.steps.front().saleFile.empty();
  if (firstStepHasFile && !parsed.firstSale.empty()) {
    RefuseUsage("the first step has a file of its own and SALE.xml is given too; which one is it?");
  }
  if (!firstStepHasFile && parsed.firstSale.empty()) RefuseUsage("SALE.xml is missing");
}

}  // namespace

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  Parsed parsed;
  if (arguments.empty()) RefuseUsage("no command");
  if (arguments.front() == "help" || arguments.front() == "--help" || arguments.front() == "-h") {
    parsed.line.help = true;
    return parsed.line;
  }
  if (arguments.front() != "calc") RefuseUsage("unknown command '" + arguments.front() + "'");

  ArgumentReader reader(arguments);
  while (!reader.AtEnd()) TakeArgument(reader, parsed);
  if (parsed.line.help) return parsed.line;

  RequireComplete(parsed);
  if (!parsed.firstSale.empty()) parsed.line.steps.front().saleFile = parsed.firstSale;
  if (!parsed.resultFileGiven && !parsed.line.rawResult) {
    parsed.line.resultFile = std::filesystem::absolute("out/result.xml");
  }
  return parsed.line;
}

const char* HelpText() {
  return R"(qncorvane: runs a sale through the promotion engine and prints the receipt.

  qncorvane calc --store DIR --mode STEP[,STEP...] [SALE.xml] [--key KEY] [--out FILE] [--xml]

  --store DIR   the store: DIR/config.ini names the database, DIR/rules/*.xml are the rules, one to a file, and
                DIR/goods.xml has the names of the goods, if they have any. The engine runs with DIR as its current
                directory, so that its log is DIR/QnCorvane.txt and a relative database file name with a "/" in it
                counts from DIR.
  --mode STEP   what to calculate, one step after the other on the same sale. A STEP is MODE or MODE=FILE, with MODE one
                of Single, All, Union, Zh, MzPromotion, Gift, Pay, Coupon, and FILE the sale XML sent with that step.
  SALE.xml      the sale XML of the first step, if that has no FILE of its own. A later step without a FILE sends the
                sale's header alone (BillNo, OrgCode, IsCalc) and so works on what the engine holds.
  --key KEY     the key under which the engine keeps the sale (default: 1)
  --out FILE    where the result XML of the last step goes (default: out/result.xml; with --xml: nowhere)
  --xml         print the result XML of the last step alone, byte for byte

A rule file's type word is the ProType in it; a rule that gives coupons (MZZQ) is loaded as MZYQ, as the engine wants it.
Rules are loaded in the order of their file names. A rule's attribute Name, and goods.xml, are for receipts alone: the engine
does not look at them.

The exit code is 0 when every step was calculated, 1 when a file, a rule, the database or a step failed, 2 when the command
line makes no sense.

  qncorvane calc --store shop --mode All sale.xml
  qncorvane calc --store shop --mode Single=scan1.xml,Single=scan2.xml,All=sale.xml,MzPromotion,Pay=card.xml
)";
}

}  // namespace Corvane::Tool
