#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"
#include "engine/CalcPromotion.h"
#include "engine/ProState.h"
#include "engine/Promotion.h"
#include "engine/RuleCalls.h"
#include "engine/SaleCalls.h"
#include "host/ExplanationJson.h"
#include "host/ExplanationTexts.h"
#include "host/Failure.h"
#include "host/JsonWriter.h"
#include "host/ResultJson.h"
#include "host/RuleFolder.h"
#include "host/Session.h"
#include "host/StoreCheck.h"
#include "host/XmlCheck.h"
#include "host/lint/Lint.h"
#include "qncorvane/host.h"
#include "rule/RuleType.h"
#include "sale/ProSale.h"

// The boundary of the safe face: plain C names in front of sessions, checks and the engine's own calls.

namespace Corvane::Host {

namespace {

/// A text for the caller; null when there is no memory for one, or no place.
void Give(char** place, std::string_view text) noexcept {
  if (place == nullptr) return;
  *place = static_cast<char*>(std::malloc(text.size() + 1));
  if (*place == nullptr) return;
  std::memcpy(*place, text.data(), text.size());
  (*place)[text.size()] = '\0';
}

void Clear(char** place) noexcept {
  if (place != nullptr) *place = nullptr;
}

/// What a code says where nothing more is known.
const char* TextOf(int code) noexcept {
  switch (code) {
    case QNC_NO_MEMORY:
      return "memory is short; the call works when there is some again";
    case QNC_REFUSED:
      return "the engine could not do it; its log may say more";
    default:
      return "the call failed";
  }
}

/// Hands an outcome over. @return its code; QNC_NO_MEMORY where there is none for the result.
int HandOver(const Outcome& outcome, char** result, char** error) noexcept {
  if (!outcome.Result.empty()) Give(result, outcome.Result);
  const bool isLost = !outcome.Result.empty() && result != nullptr && *result == nullptr;
  const int code = outcome.Code == QNC_OK && isLost ? QNC_NO_MEMORY : outcome.Code;
  if (code != QNC_OK) Give(error, outcome.Error.empty() ? TextOf(code) : outcome.Error.c_str());
  return code;
}

/// The last barrier: whatever a call throws becomes a code and a text.
template <class Call>
int Guarded(char** result, char** error, Call call) noexcept {
  Clear(result);
  Clear(error);
  try {
    return HandOver(call(), result, error);
  } catch (const Failure& failure) {
    Give(error, failure.Text);
    return failure.Code;
  } catch (const std::bad_alloc&) {
    Give(error, TextOf(QNC_NO_MEMORY));
    return QNC_NO_MEMORY;
  } catch (...) {
    Give(error, TextOf(QNC_REFUSED));
    return QNC_REFUSED;
  }
}

/// An unknown flag may be one of a later version, whose meaning would be missed.
void RequireFlags(unsigned flags, unsigned known) {
  if ((flags & ~known) == 0) return;
  Fail(QNC_BAD_ARGUMENT, "the flags " + std::to_string(flags & ~known) + " mean nothing in this call; leave them out");
}

void RequirePlace(const void* place, const char* name) {
  if (place == nullptr) Fail(QNC_BAD_ARGUMENT, std::string("no place for ") + name + "; give the address of one");
}

// --- Rules -----------------------------------------------------------------------------------------------------------

/// @param header its type is known. A rule that gives coupons is loaded under the word of those that take them.
void Load(const RuleHeader& header, const std::string& xml) {
  const Text word = header.ProType == TypeWord::kGiveCoupon ? TypeWord::kUseCoupon : header.ProType.c_str();
  if (InitPromotion(word, xml.c_str(), nullptr) != 0) throw std::bad_alloc();
}

void ClearRules(const std::string& billNo) {
  if (ClearPromotion(nullptr, billNo.c_str()) != 0) Fail(QNC_REFUSED, TextOf(QNC_REFUSED));
}

void Tell(JsonWriter& json, const RuleFile& file, bool isLoaded) {
  json.Object();
  json.Key("file").String(file.Name);
  if (!file.Header.BillNo.empty()) json.Key("billNo").String(file.Header.BillNo);
  if (!file.Header.ProType.empty()) json.Key("type").String(file.Header.ProType);
  json.Key("loaded").Boolean(isLoaded);
  if (file.Refusal) json.Key("error").String(file.Refusal->Text);
  json.End();
}

bool IsRefused(const RuleFile& file) { return file.Refusal.has_value(); }

/// @param isHeld whether the refused files kept all others out.
std::string ReportOf(const std::string& folder, const std::vector<RuleFile>& files, bool isHeld) {
  const auto refused = std::count_if(files.begin(), files.end(), IsRefused);
  JsonWriter json;
  json.Object();
  json.Key("folder").String(folder);
  json.Key("loaded").Integer(isHeld ? 0 : static_cast<std::int64_t>(files.size()) - refused);
  json.Key("refused").Integer(refused);
  json.Key("files").Array();
  for (const RuleFile& file : files) Tell(json, file, !isHeld && !IsRefused(file));
  json.End();
  json.End();
  return json.Take();
}

/// Loads files on the engine's thread.
///
/// @param replace whether they take the place of all rules; then none is loaded unless all can be.
void LoadFiles(const std::string& folder, const std::vector<RuleFile>& files, bool replace, Outcome& outcome) {
  const auto refused = std::find_if(files.begin(), files.end(), IsRefused);
  const bool isHeld = replace && refused != files.end();
  if (replace && !isHeld) ClearRules("*");
  for (const RuleFile& file : files) {
    if (!isHeld && !IsRefused(file)) Load(file.Header, file.Xml);
  }
  outcome.Result = ReportOf(folder, files, isHeld);
  if (refused == files.end()) return;
  outcome.Code = refused->Refusal->Code;
  outcome.Error = refused->Refusal->Text;
}

// --- Sales -----------------------------------------------------------------------------------------------------------

constexpr std::string_view kModes[] = {"Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay", "Coupon"};

void RequireMode(std::string_view mode) {
  if (std::find(std::begin(kModes), std::end(kModes), mode) != std::end(kModes)) return;
  std::string known;
  for (const std::string_view name : kModes) known.append(known.empty() ? "" : ", ").append(name);
  Fail(QNC_BAD_ARGUMENT, "mode '" + std::string(mode) + "' is none; the modes are " + known);
}

/// The mode of one scanned line works on the line that the text brings.
void RequireLines(std::string_view mode, int lines) {
  if (mode != kModes[0] || lines == 1) return;
  Fail(QNC_BAD_VALUE, "sale: mode Single takes one line, and here are " + std::to_string(lines) +
                          "; send the line that was scanned, and no other");
}

qnc_code CodeOf(std::int32_t answer) {
  constexpr std::int32_t kTotalOverflow = -2;
  constexpr std::int32_t kNumberOverflow = -3;
  if (answer == kTotalOverflow) return QNC_TOTAL_OVERFLOW;
  return answer == kNumberOverflow ? QNC_NUMBER_OVERFLOW : QNC_REFUSED;
}

std::string TextOfAnswer(qnc_code code, const std::string& message) {
  switch (code) {
    case QNC_TOTAL_OVERFLOW:
      return message + ": the gifts that were chosen cost more than the sale has reached; choose less and send again";
    case QNC_NUMBER_OVERFLOW:
      return message + ": more of a gift was chosen than is offered; choose less and send again";
    default:
      return message + ": the sale could not be calculated; forget it and send it again, and read the log";
  }
}

/// The explanation of a call that has no result.
std::string ExplanationAlone(const Explained& explained, const ProSale& sale) {
  JsonWriter json;
  json.Object();
  WriteExplanation(json.Key("explanation"), explained, sale);
  json.End();
  return json.Take();
}

struct Request {
  std::string Key;
  std::string Mode;
  std::string Xml;
  unsigned Flags;
  std::string Folder;  ///< the store's
};

void Calculate(const Request& asked, Outcome& outcome) {
  if ((asked.Flags & QNC_LENIENT) == 0) RequireLines(asked.Mode, CheckSale(asked.Xml, "sale"));
  std::array<char, 1024> message{};  // above the longest status text by far
  const bool isExplained = (asked.Flags & QNC_EXPLAIN) != 0;
  std::optional<Explained> explained;
  if (isExplained) explained.emplace().Mode = asked.Mode;
  std::string result;
  const std::int32_t answer =
      CalcPromotion(asked.Key.c_str(), asked.Mode.c_str(), asked.Xml.c_str(), ResultPlace(result), message.data(),
                    isExplained ? &explained->Told : nullptr);
  const ProSale* const sale = ProSale::Find(asked.Key);
  if (answer != 0) {
    outcome.Code = CodeOf(answer);
    outcome.Error = TextOfAnswer(outcome.Code, message.data());
    // What doesn't fit of a choice is told; where the calculation failed there is nothing to tell.
    if (isExplained && outcome.Code != QNC_REFUSED && sale != nullptr) {
      outcome.Result = ExplanationAlone(*explained, *sale);
    }
    return;
  }
  if (isExplained && sale != nullptr) {
    GoodsList goods(asked.Folder);
    explained->Near = FindNearMisses(asked.Mode, explained->Told, *sale, goods);
  }
  const bool isJson = isExplained || (asked.Flags & QNC_JSON) != 0;
  outcome.Result =
      isJson && sale != nullptr ? ResultJson(result, *sale, explained ? &*explained : nullptr) : std::move(result);
}

// --- State -----------------------------------------------------------------------------------------------------------

std::string StateOf(const std::string& folder) {
  Promotion& promotion = Promotion::Instance();
  const Connection& database = promotion.Database().Shared();
  std::array<char, 16> word{};
  JsonWriter json;
  json.Object();
  json.Key("version").String(QNCORVANE_VERSION);
  json.Key("folder").String(folder);
  json.Key("state").String(ProState::Instance().Get(word.data()));
  json.Key("rules").Array();
  for (const RulePtr& rule : promotion.Rules()) json.String(OrEmpty(InfoOf(*rule).BillNo));
  json.End();
  json.Key("sales").Integer(static_cast<std::int64_t>(ProSale::Count()));
  json.Key("database").Object();
  json.Key("kind").String(database.DbTypeUpper.toStdString());
  json.Key("open").Boolean(database.IsUsable());
  json.End();
  json.End();
  return json.Take();
}

std::string InFolder(const std::string& base, const std::string& name) {
  return !name.empty() && name.front() == '/' ? name : base + "/" + name;
}

}  // namespace

}  // namespace Corvane::Host

using namespace Corvane;        // NOLINT(google-build-using-namespace): the boundary speaks of both sides
using namespace Corvane::Host;  // NOLINT(google-build-using-namespace)

extern "C" {

const char* qnc_version(void) { return QNCORVANE_VERSION; }

const char* qnc_texts(void) { return kExplanationTexts; }

void qnc_free(char* text) { std::free(text); }

int qnc_open(const char* folder, qnc_engine** engine, char** error) {
  if (engine != nullptr) *engine = nullptr;
  return Guarded(nullptr, error, [&] {
    RequirePlace(engine, "the engine");
    return Session::Open(OrEmpty(folder), *engine);
  });
}

int qnc_close(qnc_engine* engine, char** error) {
  return Guarded(nullptr, error, [&] { return Session::Close(engine); });
}

int qnc_load_rule(qnc_engine* engine, const char* xml, const char* name, unsigned flags, unsigned limit_ms,
                  char** error) {
  return Guarded(nullptr, error, [&] {
    RequireFlags(flags, QNC_LENIENT);
    const std::string text = OrEmpty(xml);
    const std::string shown = IsEmpty(name) ? "rule" : name;
    const bool isLenient = (flags & QNC_LENIENT) != 0;
    return Session::Do(engine, limit_ms,
                       [=](Outcome&) { Load(isLenient ? HeaderOf(text, shown) : CheckRule(text, shown), text); });
  });
}

int qnc_load_rules(qnc_engine* engine, const char* folder, unsigned flags, unsigned limit_ms, char** report,
                   char** error) {
  return Guarded(report, error, [&] {
    RequireFlags(flags, QNC_LENIENT | QNC_REPLACE);
    const std::string shown = IsEmpty(folder) ? "rules" : folder;
    const std::string path = InFolder(Session::FolderOf(engine), shown);
    const bool isLenient = (flags & QNC_LENIENT) != 0;
    const bool replace = (flags & QNC_REPLACE) != 0;
    return Session::Do(engine, limit_ms, [=](Outcome& outcome) {
      LoadFiles(path, ReadRuleFolder(path, shown, isLenient), replace, outcome);
    });
  });
}

int qnc_clear_rules(qnc_engine* engine, const char* bill_no, unsigned limit_ms, char** error) {
  return Guarded(nullptr, error, [&] {
    const std::string number = OrEmpty(bill_no);
    if (number.empty()) Fail(QNC_BAD_ARGUMENT, "no BillNo; name the rule, or * for all");
    return Session::Do(engine, limit_ms, [=](Outcome&) { ClearRules(number); });
  });
}

int qnc_calculate(qnc_engine* engine, const char* key, const char* mode, const char* xml, unsigned flags,
                  unsigned limit_ms, char** result, char** error) {
  return Guarded(result, error, [&] {
    RequirePlace(result, "the result");
    RequireFlags(flags, QNC_LENIENT | QNC_JSON | QNC_EXPLAIN);
    Request asked = {OrEmpty(key), OrEmpty(mode), OrEmpty(xml), flags, {}};
    if (asked.Key.empty()) Fail(QNC_BAD_ARGUMENT, "no key; name the sale");
    RequireMode(asked.Mode);
    if (asked.Xml.empty()) Fail(QNC_BAD_XML, "sale:1:1: is empty; send an element at least, <Sale/>");
    if ((flags & QNC_EXPLAIN) != 0) asked.Folder = Session::FolderOf(engine);
    return Session::Do(engine, limit_ms, [=](Outcome& outcome) { Calculate(asked, outcome); });
  });
}

int qnc_forget_sale(qnc_engine* engine, const char* key, unsigned limit_ms, char** error) {
  return Guarded(nullptr, error, [&] {
    const std::string name = OrEmpty(key);
    return Session::Do(engine, limit_ms, [=](Outcome& outcome) {
      if (DeleteSaleSetByKey(name.c_str()) != 0) outcome.Code = QNC_REFUSED;
    });
  });
}

int qnc_forget_sales(qnc_engine* engine, unsigned limit_ms, char** error) {
  return Guarded(nullptr, error, [&] {
    return Session::Do(engine, limit_ms, [](Outcome& outcome) {
      if (ClearSaleSetForNet(nullptr) != 0) outcome.Code = QNC_REFUSED;
    });
  });
}

int qnc_state(qnc_engine* engine, unsigned limit_ms, char** state, char** error) {
  return Guarded(state, error, [&] {
    RequirePlace(state, "the state");
    const std::string folder = Session::FolderOf(engine);
    return Session::Do(engine, limit_ms, [=](Outcome& outcome) { outcome.Result = StateOf(folder); });
  });
}

int qnc_check(const char* folder, unsigned limit_ms, char** report, char** error) {
  return Guarded(report, error, [&] {
    if (IsEmpty(folder)) Fail(QNC_BAD_ARGUMENT, "no folder is named; name the folder of a store");
    const std::string path = std::filesystem::absolute(folder).lexically_normal().string();
    return Session::DoAnyway(limit_ms, [=](Outcome& outcome) {
      const Findings findings = CheckStore(path);
      outcome.Result = ReportOf(path, findings);
      const Finding* const first = FirstError(findings);
      if (first == nullptr) return;
      outcome.Code = first->Code;
      outcome.Error = first->Text();
    });
  });
}

int qnc_lint(const char* folder, unsigned limit_ms, char** report, char** error) {
  return Guarded(report, error, [&] {
    if (IsEmpty(folder)) Fail(QNC_BAD_ARGUMENT, "no folder is named; name the folder of a store");
    const std::string path = std::filesystem::absolute(folder).lexically_normal().string();
    return Session::DoAnyway(limit_ms, [=](Outcome& outcome) {
      const Lint::Flaws flaws = Lint::LookThrough(path);
      outcome.Result = flaws.Report(path);
      const Lint::Flaw* const first = flaws.FirstError();
      if (first == nullptr) return;
      outcome.Code = first->Answer;
      outcome.Error = first->Text();
    });
  });
}

}  // extern "C"
