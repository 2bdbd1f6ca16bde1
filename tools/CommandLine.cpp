#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>
#include <system_error>

#include "Sentences.h"
#include "StoreTemplates.h"
#include "ToolError.h"
#include "qncorvane/host.h"

namespace Corvane::Tool {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kModes = {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};
const std::vector<std::string> kGenerated = {"man", "bash", "zsh", "fish"};
const std::vector<std::string> kCommands = {"calc", "explain", "init", "check", "lint", "till", "help"};

const TermList kExitCodes{"Exit status",
                          {{"0", "all was done: every step calculated, no error found"},
                           {"1", "a file, a rule, the database or a step failed, or a check found an error"},
                           {"2", "the command line makes no sense"}}};
const TermList kEnvironment{
    "Environment",
    {{"NO_COLOR", "no colours on a terminal when it is set; elsewhere there are none anyway"},
     {"LC_ALL, LC_MESSAGES, LANG", "the language of explanations and of the till: Chinese for zh"}}};
const TermList kFiles{"Files",
                      {{"config.ini", "the store's settings"},
                       {"rules/*.xml", "its rules, one to a file"},
                       {"goods.xml", "names of goods, for receipts; prices and classes, for the till"},
                       {"QnCorvane.txt", "its log"}}};

[[noreturn]] void RefuseUsage(const std::string& text) {
  throw ToolError(text + "\nTry 'qncorvane --help'.", ToolError::kUsage);
}

std::string Joined(const std::vector<std::string>& words) {
  std::string joined;
  for (const std::string& word : words) joined += (joined.empty() ? "" : ", ") + word;
  return joined;
}

void RequireKnownMode(const std::string& mode) {
  if (std::find(kModes.begin(), kModes.end(), mode) != kModes.end()) return;
  RefuseUsage("unknown mode '" + mode + "'; the modes are " + Joined(kModes));
}

Step ParseStep(const std::string& text) {
  const std::size_t equals = text.find('=');
  Step step{text.substr(0, equals), {}};
  RequireKnownMode(step.mode);
  if (equals == std::string::npos) return step;
  if (equals + 1 == text.size()) RefuseUsage("no file behind '" + text + "'");
  step.saleFile = text.substr(equals + 1);
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

/// What the arguments of the commands are read into.
struct Values {
  CalcCommand calc;
  std::string mode;
  fs::path sale;
  bool asXml = false;
  bool asJson = false;
  ExplainCommand explain;
  std::string explainMode = "All,MzPromotion";
  fs::path explainSale;
  std::int64_t line = 0;
  InitCommand init;
  CheckCommand check;
  LintCommand lint;
  TillCommand till;
  GenerateCommand generate;
  std::string helpTopic;
};

/// The commands, their options and what help says of them: the one place where they are defined.
class Definitions {
 public:
  Definitions() {
    m_app.name("qncorvane");
    m_app.set_help_flag("-h,--help", "show this text");
    m_app.set_version_flag("--version", std::string("qncorvane ") + qnc_version(), "show the version");
    // With one command chosen, its name and those of the others are ordinary words: files may be called so.
    m_app.require_subcommand(0, 1);
    m_app.footer(kProgramDetails);
    DefineCalc();
    DefineExplain();
    DefineInit();
    DefineCheck();
    DefineLint();
    DefineTill();
    DefineHelp();
    DefineGenerate();
  }
  Definitions(const Definitions&) = delete;
  Definitions& operator=(const Definitions&) = delete;

  /// @return the name of the command in the arguments.
  std::string Parse(std::vector<std::string> arguments) {
    // The parser takes them from the end.
    std::reverse(arguments.begin(), arguments.end());
    m_app.parse(std::move(arguments));
    return ChosenCommand();
  }

  /// @return the name of the command that was chosen, or the empty text.
  [[nodiscard]] std::string ChosenCommand() const {
    const std::vector<CLI::App*> chosen = m_app.get_subcommands();
    return chosen.empty() ? std::string() : chosen.front()->get_name();
  }

  [[nodiscard]] bool WasGiven(const std::string& command, const std::string& option) const {
    return m_app.get_subcommand(command)->count(option) > 0;
  }

  [[nodiscard]] const Values& Read() const { return m_values; }

  [[nodiscard]] ProgramText Describe() const {
    ProgramText text;
    text.version = qnc_version();
    text.program = DescribeApp(m_app);
    for (const std::string& name : kCommands) text.commands.push_back(DescribeApp(*m_app.get_subcommand(name)));
    text.lists = {kExitCodes, kEnvironment, kFiles};
    return text;
  }

 private:
  /// An option or an argument with the kind of its value.
  CLI::Option* Add(CLI::Option* option, const std::string& value, ValueKind kind,
                   const std::vector<std::string>& words = {}) {
    m_kinds[option] = {kind, words};
    return option->type_name(value);
  }

  void DefineCalc() {
    CLI::App& calc = *m_app.add_subcommand("calc", "run a sale, or a folder of sales, through the engine");
    calc.footer(kCalcDetails);
    CalcCommand& values = m_values.calc;
    Add(calc.add_option(
            "--store", values.store,
            "the store: DIR/config.ini names the database, DIR/rules/*.xml are the rules, one to a file, and "
            "DIR/goods.xml has the names of the goods, if they have any; the log is DIR/QnCorvane.txt"),
        "DIR", ValueKind::folder)
        ->required();
    Add(calc.add_option(
            "--mode", m_values.mode,
            "what to calculate, one step after the other on the same sale. A STEP is MODE or MODE=FILE, with "
            "MODE one of " +
                Joined(kModes) + ", and FILE the sale XML sent with that step"),
        "STEP[,STEP...]", ValueKind::words, kModes)
        ->required();
    Add(calc.add_option("--key", values.key, "the key under which the engine keeps the sale (default: 1)"), "KEY",
        ValueKind::text);
    Add(calc.add_option("--out", values.resultPath,
                        "where the result of the last step goes (default: out/result.xml; with --xml and --json: "
                        "nowhere); for a folder of sales the folder of their results (default: nowhere)"),
        "FILE", ValueKind::file);
    CLI::Option* const xml =
        calc.add_flag("--xml", m_values.asXml, "print the result XML of the last step alone, byte for byte");
    calc.add_flag("--json", m_values.asJson, "print the result of the last step as JSON, alone")->excludes(xml);
    calc.add_flag("--lenient", values.isLenient,
                  "read XML as far as it goes, and whatever its values are, in place of refusing it");
    Add(calc.add_option("SALE", m_values.sale,
                        "the sale XML of the first step, if that has no FILE of its own; - is standard input; a folder "
                        "stands for every *.xml in it, each a sale of its own"),
        "SALE", ValueKind::file);
  }

  void DefineExplain() {
    CLI::App& explain =
        *m_app.add_subcommand("explain", "tell why each promotion of a sale gave what it gave, or nothing");
    explain.footer(kExplainDetails);
    ExplainCommand& values = m_values.explain;
    Add(explain.add_option("--store", values.store, "the store, as for calc"), "DIR", ValueKind::folder)->required();
    Add(explain.add_option(
            "--mode", m_values.explainMode,
            "what to calculate, as for calc; MODE is one of " + Joined(kModes) + " (default: All,MzPromotion)"),
        "STEP[,STEP...]", ValueKind::words, kModes);
    Add(explain.add_option("--rule", values.rule,
                           "one promotion, by its number: every pass, and all that decided on the way"),
        "BILLNO", ValueKind::text);
    Add(explain.add_option("--line", m_values.line, "one line, by its SerialNo: the promotions that looked at it"),
        "NO", ValueKind::text);
    Add(explain.add_option("--lang", values.language,
                           "the language, one of " + Joined(Sentences::Languages()) +
                               " (default: that of LC_ALL, LC_MESSAGES or LANG, otherwise en)"),
        "LANG", ValueKind::words, Sentences::Languages());
    CLI::Option* const json =
        explain.add_flag("--json", values.asJson, "print the explanations of all steps as one JSON array, alone");
    for (const char* const one : {"--rule", "--line"}) json->excludes(explain.get_option(one));
    explain.add_flag("--lenient", values.isLenient, "as for calc");
    Add(explain.add_option("SALE", m_values.explainSale,
                           "the sale XML of the first step, if that has no FILE of its own; - is standard input"),
        "SALE", ValueKind::file);
  }

  void DefineInit() {
    CLI::App& init = *m_app.add_subcommand("init", "make a store that works, with one rule and a sale");
    init.footer(kInitDetails);
    Add(init.add_option("DIR", m_values.init.folder, "the folder to make; one that is there must be empty"), "DIR",
        ValueKind::folder)
        ->required();
    const std::vector<std::string> types = TemplateTypes();
    Add(init.add_option("--type", m_values.init.type,
                        "the type of the rule, one of " + Joined(types) + " (default: PTXS)"),
        "TYPE", ValueKind::words, types)
        ->check([types](const std::string& word) {
          const bool isKnown = std::find(types.begin(), types.end(), word) != types.end();
          return isKnown ? std::string() : "unknown type '" + word + "'; the types are " + Joined(types);
        });
  }

  void DefineCheck() {
    CLI::App& check =
        *m_app.add_subcommand("check", "look through a store: settings, driver, database, tables, columns, rules");
    check.footer(kCheckDetails);
    Add(check.add_option("--store", m_values.check.store, "the store's folder"), "DIR", ValueKind::folder)->required();
    check.add_flag("--json", m_values.check.asJson, "print what was found as JSON, alone");
  }

  void DefineLint() {
    CLI::App& lint = *m_app.add_subcommand("lint", "look through a store's rules and rows for what can't be meant");
    lint.footer(kLintDetails);
    LintCommand& values = m_values.lint;
    CLI::Option* const store =
        Add(lint.add_option("--store", values.store, "the store's folder"), "DIR", ValueKind::folder);
    store->required();
    CLI::Option* const json = lint.add_flag("--json", values.asJson, "print what was found as JSON, alone");
    lint.add_flag("--fix-hints", values.withMends, "print below each finding what to do")->excludes(json);
  }

  void DefineTill() {
    CLI::App& till = *m_app.add_subcommand("till", "try a store by hand, at a till in the terminal");
    till.footer(kTillDetails);
    TillCommand& values = m_values.till;
    Add(till.add_option("--store", values.store, "the store's folder"), "DIR", ValueKind::folder)->required();
    Add(till.add_option("--lang", values.language, "the language, as for explain"), "LANG", ValueKind::words,
        Sentences::Languages());
    Add(till.add_option("--script", values.script,
                        "run the commands of FILE in place of a screen, and print receipt and reasons after each; - is "
                        "standard input"),
        "FILE", ValueKind::file);
    Add(till.add_option("--key", values.key, "what the keys of the sales begin with (default: till)"), "KEY",
        ValueKind::text);
  }

  void DefineHelp() {
    CLI::App& help = *m_app.add_subcommand("help", "show what the program or one of its commands does");
    help.footer("");
    Add(help.add_option("COMMAND", m_values.helpTopic, "the command; none for the whole program"), "COMMAND",
        ValueKind::words, kCommands);
  }

  /// For those who build and package the program: left out of help.
  void DefineGenerate() {
    CLI::App& generate = *m_app.add_subcommand("generate", "make the manual page or the completions of a shell");
    generate.group("");
    generate.add_option("KIND", m_values.generate.kind, "one of " + Joined(kGenerated))
        ->required()
        ->check([](const std::string& word) {
          const bool isKnown = std::find(kGenerated.begin(), kGenerated.end(), word) != kGenerated.end();
          return isKnown ? std::string() : "unknown kind '" + word + "'; the kinds are " + Joined(kGenerated);
        });
    generate.add_option("FILE", m_values.generate.file, "where it goes (default: standard output)");
  }

  [[nodiscard]] ArgumentText DescribeArgument(const CLI::Option& option) const {
    ArgumentText text;
    for (const std::string& name : option.get_snames()) text.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) text.names.push_back("--" + name);
    text.text = option.get_description();
    text.isRequired = option.get_required();
    const auto found = m_kinds.find(&option);
    if (found == m_kinds.end()) return text;
    text.value = option.get_type_name();
    text.kind = found->second.kind;
    text.words = found->second.words;
    return text;
  }

  [[nodiscard]] CommandText DescribeApp(const CLI::App& app) const {
    CommandText text{app.get_name(), app.get_description(), {}, {}};
    std::istringstream paragraphs(app.get_footer());
    for (std::string line; std::getline(paragraphs, line);) text.details.push_back(line);
    for (const CLI::Option* option : app.get_options()) text.arguments.push_back(DescribeArgument(*option));
    return text;
  }

  struct Kind {
    ValueKind kind;
    std::vector<std::string> words;
  };

  // A paragraph a line; one that begins with two blanks is an example.
  static constexpr const char* kProgramDetails =
      "'qncorvane COMMAND --help' tells the options of a command.\n"
      "  qncorvane init corner-shop\n"
      "  qncorvane check --store corner-shop\n"
      "  qncorvane calc --store corner-shop --mode All corner-shop/sale.xml";
  static constexpr const char* kCalcDetails =
      "A later step without a FILE sends the sale's header alone (BillNo, OrgCode, IsCalc) and so works on what the "
      "engine "
      "holds.\n"
      "Rules are loaded in the order of their file names. A rule's attribute Name, and goods.xml, are for receipts "
      "alone: "
      "the engine does not look at them.\n"
      "Of a folder of sales each is calculated for itself and gets a line with what was sent and what is to pay. One "
      "that "
      "fails is told and counted, and the rest goes on; the exit code is 1 then.\n"
      "  qncorvane calc --store shop --mode All sale.xml\n"
      "  qncorvane calc --store shop --mode All,MzPromotion --json - < sale.xml\n"
      "  qncorvane calc --store shop --mode All,MzPromotion sales/ --out results/\n"
      "  qncorvane calc --store shop --mode Single=scan1.xml,Single=scan2.xml,All=sale.xml,Pay=card.xml";
  static constexpr const char* kExplainDetails =
      "First a table: each promotion with the money that it gave, or why it gave nothing. Then what would have to be "
      "added to get more, where half of it is there; with --rule in any case. Then the way of each line's amount from "
      "discount to discount.\n"
      "  qncorvane explain --store shop sale.xml\n"
      "  qncorvane explain --store shop --rule R07 --lang zh sale.xml\n"
      "  qncorvane explain --store shop --mode All,MzPromotion,Pay=card.xml --line 3 sale.xml";
  static constexpr const char* kInitDetails =
      "The store has a database file of SQLite with all tables (store.db), the settings (config.ini), a rule with its "
      "rows "
      "(rules/), names of goods (goods.xml), and a sale on which the rule gives something (sale.xml).\n"
      "  qncorvane init corner-shop\n"
      "  qncorvane init --type ZHGD bundles";
  static constexpr const char* kCheckDetails =
      "Nothing is loaded and nothing changed. The exit code is 0 where no error was found, 1 otherwise.\n"
      "  qncorvane check --store shop";
  static constexpr const char* kLintDetails =
      "A finding a line: the place, error or warning, what it is, and its code in brackets. An error keeps a rule from "
      "giving "
      "what it says; a warning is something that is rarely meant. All that 'check' finds is among them. Nothing is "
      "loaded and "
      "nothing changed. The exit code is 0 where no error was found, 1 otherwise.\n"
      "Where DIR/goods.xml tells the attributes Price, CAT and BRD of goods, prices and codes are compared with them.\n"
      "  qncorvane lint --store shop --fix-hints";

  static constexpr const char* kTillDetails =
      "Goods are those of DIR/goods.xml. The receipt stands beside the reasons: what would have to be added for more, "
      "which rules gave something, and why the others did not. At the till 'help' tells its commands.\n"
      "It runs in Python, with Debian's packages python3-qncorvane and, for the screen, python3-prompt-toolkit.\n"
      "  qncorvane till --store shop\n"
      "  qncorvane till --store shop --script tries.till";

  Values m_values;
  std::map<const CLI::Option*, Kind> m_kinds;
  CLI::App m_app{"runs sales through the promotion engine of a store"};
};

void ChooseForm(const Values& values, CalcCommand& command) {
  if (values.asXml) command.form = Form::xml;
  if (values.asJson) command.form = Form::json;
}

/// A folder gives each sale a key of its own, and the first step's file.
void RequireStepsOfAFolder(const CalcCommand& command) {
  if (command.form == Form::xml) RefuseUsage("--xml prints one sale, not a folder; --out DIR writes the results");
  for (const Step& step : command.steps) {
    if (!step.saleFile.empty()) RefuseUsage("with a folder of sales no step has a FILE of its own");
  }
}

void RequireFirstSale(const fs::path& sale, std::vector<Step>& steps) {
  fs::path& first = steps.front().saleFile;
  if (!first.empty() && !sale.empty()) {
    RefuseUsage("the first step has a file of its own and SALE is given too; which one is it?");
  }
  if (first.empty() && sale.empty()) RefuseUsage("SALE is missing");
  if (first.empty()) first = sale;
  const auto readsInput = [](const Step& step) { return step.saleFile == "-"; };
  if (std::count_if(steps.begin(), steps.end(), readsInput) > 1) {
    RefuseUsage("standard input can be read once");
  }
}

CalcCommand FinishCalc(const Values& values, bool keyGiven) {
  CalcCommand command = values.calc;
  command.steps = ParseSteps(values.mode);
  ChooseForm(values, command);
  if (command.store.empty()) RefuseUsage("--store must not be empty");
  if (command.key.empty()) RefuseUsage("--key must not be empty");
  std::error_code unreadable;
  if (values.sale != "-" && fs::is_directory(values.sale, unreadable)) {
    if (keyGiven) RefuseUsage("--key names one sale, not those of a folder");
    RequireStepsOfAFolder(command);
    command.salesFolder = values.sale;
    return command;
  }
  RequireFirstSale(values.sale, command.steps);
  if (command.resultPath.empty() && command.form == Form::receipt) command.resultPath = fs::path("out") / "result.xml";
  return command;
}

/// The language of the messages that the environment asks for, as far as there is one.
std::string LanguageOfEnvironment() {
  for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    return std::string(value).rfind("zh", 0) == 0 ? "zh" : "en";
  }
  return "en";
}

void RequireLanguage(const std::string& language) {
  const std::vector<std::string>& languages = Sentences::Languages();
  if (std::find(languages.begin(), languages.end(), language) != languages.end()) return;
  RefuseUsage("unknown language '" + language + "'; the languages are " + Joined(languages));
}

ExplainCommand FinishExplain(const Values& values, const Definitions& definitions) {
  ExplainCommand command = values.explain;
  command.steps = ParseSteps(values.explainMode);
  if (command.store.empty()) RefuseUsage("--store must not be empty");
  if (definitions.WasGiven("explain", "--rule") && command.rule.empty()) RefuseUsage("--rule must not be empty");
  if (definitions.WasGiven("explain", "--line")) command.line = values.line;
  if (!definitions.WasGiven("explain", "--lang")) command.language = LanguageOfEnvironment();
  RequireLanguage(command.language);
  RequireFirstSale(values.explainSale, command.steps);
  return command;
}

TillCommand FinishTill(const Values& values, const Definitions& definitions) {
  TillCommand command = values.till;
  if (command.store.empty()) RefuseUsage("--store must not be empty");
  if (command.key.empty()) RefuseUsage("--key must not be empty");
  if (definitions.WasGiven("till", "--script") && command.script.empty()) RefuseUsage("--script must not be empty");
  if (!definitions.WasGiven("till", "--lang")) command.language = LanguageOfEnvironment();
  RequireLanguage(command.language);
  return command;
}

const CommandText& CommandNamed(const ProgramText& text, const std::string& name) {
  for (const CommandText& command : text.commands) {
    if (command.name == name) return command;
  }
  RefuseUsage("unknown command '" + name + "'; the commands are " + Joined(kCommands));
}

std::string HelpOn(const ProgramText& text, const std::string& name) {
  return name.empty() ? ProgramHelp(text) : CommandHelp(text, CommandNamed(text, name));
}

/// The parser only says that some word was not expected; this one can be told better.
void RequireCommand(const std::vector<std::string>& arguments) {
  if (arguments.empty()) RefuseUsage("no command; the commands are " + Joined(kCommands));
  const std::string& first = arguments.front();
  if (first.rfind('-', 0) == 0 || first == "generate") return;
  if (std::find(kCommands.begin(), kCommands.end(), first) != kCommands.end()) return;
  RefuseUsage("unknown command '" + first + "'; the commands are " + Joined(kCommands));
}

}  // namespace

Command ParseCommandLine(const std::vector<std::string>& arguments) {
  RequireCommand(arguments);
  Definitions definitions;
  std::string name;
  try {
    name = definitions.Parse(arguments);
  } catch (const CLI::CallForHelp&) {
    return PrintCommand{HelpOn(definitions.Describe(), definitions.ChosenCommand())};
  } catch (const CLI::CallForVersion& version) {
    return PrintCommand{std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    RefuseUsage(error.what());
  }
  const Values& values = definitions.Read();
  if (name == "calc") return FinishCalc(values, definitions.WasGiven("calc", "--key"));
  if (name == "explain") return FinishExplain(values, definitions);
  if (name == "init" && values.init.folder.empty()) RefuseUsage("DIR must not be empty");
  if (name == "init") return values.init;
  if (name == "check") return values.check;
  if (name == "lint") return values.lint;
  if (name == "till") return FinishTill(values, definitions);
  if (name == "generate") return values.generate;
  if (name == "help") return PrintCommand{HelpOn(definitions.Describe(), values.helpTopic)};
  RefuseUsage("no command; the commands are " + Joined(kCommands));
}

ProgramText DescribeProgram() { return Definitions().Describe(); }

}  // namespace Corvane::Tool
