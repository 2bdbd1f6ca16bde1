#include <QString>
#include <algorithm>
#include <set>
#include <string_view>

#include "base/Numbers.h"
#include "db/ColumnValue.h"
#include "host/ValueForm.h"
#include "host/lint/Checks.h"
#include "host/lint/Words.h"
#include "promo/comb/ProCombFixed.h"
#include "promo/comb/ProCombFree.h"
#include "promo/mz/ProMzList.h"
#include "promo/mz/Tiers.h"
#include "rule/ActionPrice.h"
#include "rule/RuleType.h"

namespace Corvane::Host::Lint {

namespace {

WordList Kinds() { return {GoodsKind::kGoods, GoodsKind::kCategory, GoodsKind::kBrand}; }
WordList Ranges() { return {RangeWord::kIn, RangeWord::kNot}; }
WordList Prices() { return {PriceKind::kPrice, PriceKind::kRate, PriceKind::kReduction}; }
WordList SetPrices() { return {TierPrice::kSetPrice, TierPrice::kPercentOff, TierPrice::kSetDiscount}; }
WordList FixedPrices() { return {FixedPrice::kPerArticle, FixedPrice::kPerCombination}; }
WordList Units() { return {UnitWord::kMoney, UnitWord::kQuantity}; }
WordList Areas() { return {ConditionArea::kWholeSale, ConditionArea::kChosenLines}; }

/// The columns of all tables that hold numbers; the others hold texts.
constexpr const char* kNumberColumns[] = {
    "DscPrice",     "DscRate",  "SaleCount",   "TradeMaxCount", "PriceTotal", "CountTotal", "MaxDiscount", "BaseMoney",
    "BaseDscMoney", "AddMoney", "AddDscMoney", "SaleMaxIn",     "BaseConNum", "BaseDscNum", "AddConNum",   "AddDscNum"};

/// A name that nobody compares.
constexpr std::string_view kFreeText = "ProActname";

bool IsNumberColumn(const std::string& column) {
  return std::any_of(std::begin(kNumberColumns), std::end(kNumberColumns),
                     [&](const char* name) { return column == name; });
}

void CheckNumber(const Row& row, const std::string& column, Flaws& flaws) {
  const QVariant value = row.Value(column.c_str());
  const std::string text = row.Text(column.c_str());
  if (value.isNull() || text.empty()) return;
  if (IsText(value) && !Fits(QString::fromStdString(Trimmed(text)), ValueForm::kNumber)) {
    AddNoNumber(flaws, row.Where(), column, text);
  } else if (row.Number(column.c_str()) < 0) {
    flaws.Add(Codes::kNegativeNumber, row.Where(),
              column + " " + text + " lies below 0: the row gives nothing, or takes",
              "write the amount without its sign");
  }
}

void CheckText(const Row& row, const std::string& column, Flaws& flaws) {
  const std::string text = row.Text(column.c_str());
  if (column == kFreeText || Trimmed(text) == text) return;
  flaws.Add(Codes::kPaddedText, row.Where(),
            column + " " + Shown(text) + " has blanks at an end, and is another text with them",
            "write " + Shown(Trimmed(text)));
}

void CheckColumns(const Row& row, Flaws& flaws) {
  std::string_view columns = row.Table().Columns;
  while (!columns.empty()) {
    const std::size_t end = std::min(columns.find(','), columns.size());
    const std::string column(columns.substr(0, end));
    columns.remove_prefix(std::min(end + 1, columns.size()));
    if (IsNumberColumn(column)) {
      CheckNumber(row, column, flaws);
    } else {
      CheckText(row, column, flaws);
    }
  }
}

/// A code that no line bears: rows are found by it.
void CheckCode(const Row& row, Flaws& flaws) {
  if (!Trimmed(row.Text("PluCode")).empty()) return;
  flaws.Add(Codes::kNoGoodsCode, row.Where(), "the row has no PluCode: it names no goods",
            "write the code, or delete the row");
}

void CheckKind(const Row& row, Flaws& flaws) {
  CheckCode(row, flaws);
  CheckWord(flaws, Codes::kUnknownGoodsKind, row.Where(), "PluType", row.Text("PluType"), Kinds(),
            "no kind of goods: no line is found by the row");
}

void CheckRange(const Row& row, Flaws& flaws) {
  CheckWord(flaws, Codes::kUnknownRange, row.Where(), "InRange", row.Text("InRange"), Ranges(),
            "neither IN nor NOT: the row does nothing");
}

bool Excludes(const Row& row) { return row.Text("InRange") == RangeWord::kNot; }

/// Rows of which none includes anything leave nothing.
void CheckSomeIn(const Rows& rows, Flaws& flaws) {
  if (rows.empty() || !std::all_of(rows.begin(), rows.end(), Excludes)) return;
  flaws.Add(Codes::kOnlyNotRows, rows.front().Where(),
            "every row leaves goods out, and none takes any in: nothing is left",
            "write a row with InRange IN for what is meant");
}

void RefuseKind(const Row& row, const std::string& why, Flaws& flaws) {
  const std::string kind = row.Text("PluType");
  if (kind.empty() || kind == GoodsKind::kGoods) return;
  flaws.Add(Codes::kArticlesOnly, row.Where(), "PluType " + Shown(kind) + ": " + why,
            "write a row with PluType PLU for each article");
}

// --- Ordinary rules -------------------------------------------------------------------------------------------------

void CheckSetRow(const Row& row, Flaws& flaws) {
  RefuseKind(row, "PTOS looks at articles alone, and the row does nothing", flaws);
  if (Excludes(row)) {
    flaws.Add(Codes::kNotCountsAsIn, row.Where(), "InRange NOT is not looked at by PTOS: the row counts as IN",
              "delete the row");
  }
  if (row.Text("DscType") != PriceKind::kReduction) return;
  flaws.Add(Codes::kNoReductionInSets, row.Where(), "DscType 2 is none of PTOS: a discount is told and no money given",
            "write PRC with the price, or RAT with the rate");
}

void CheckDirectRows(const Rule& rule, Flaws& flaws) {
  const Rows& rows = rule.In(Table::kDirect);
  const bool isSets = rule.Is(TypeWord::kSets);
  for (const Row& row : rows) {
    CheckKind(row, flaws);
    if (isSets) {
      CheckSetRow(row, flaws);
    } else {
      CheckRange(row, flaws);
    }
    if (Excludes(row)) continue;
    CheckWord(flaws, Codes::kUnknownPriceKind, row.Where(), "DscType", row.Text("DscType"), Prices(),
              "no kind of price: the row gives nothing");
  }
  if (!isSets) CheckSomeIn(rows, flaws);
}

// --- Combinations ---------------------------------------------------------------------------------------------------

/// Any class of the lines may be named, so that a word is doubted alone that is nearly one of the three.
void CheckClassWord(const Row& row, Flaws& flaws) {
  const std::string kind = row.Text("PluType");
  CheckCode(row, flaws);
  if (IsAmong(Trimmed(kind), Kinds()) || (!kind.empty() && Meant(kind, Kinds()).empty())) return;
  flaws.Add(Codes::kUnknownGoodsKind, row.Where(),
            "PluType " + Shown(kind) + " is no kind of goods, unless the lines have such a class",
            MendWord(kind, Kinds()));
}

/// Each row for a class is offered to every line that no row for an article names, whichever class brought the line in.
void CheckOneClass(const Rows& rows, Flaws& flaws) {
  const auto terms = [](const Row& row) {
    return row.Text("DscType") + "/" + row.Text("DscPrice") + "/" + row.Text("DscRate");
  };
  const Row* first = nullptr;
  for (const Row& row : rows) {
    if (row.Text("PluType") == GoodsKind::kGoods) continue;
    if (first != nullptr && terms(row) != terms(*first)) {
      flaws.Add(Codes::kMixedClasses, row.Where(),
                "another row for a class gives otherwise, and each of them is offered to the goods of both",
                "write a rule for each class, or the same discount");
    }
    if (first == nullptr) first = &row;
  }
}

void CheckFirstRowAlone(const Rows& rows, Flaws& flaws) {
  for (std::size_t place = 1; place < rows.size(); ++place) {
    flaws.Add(Codes::kIdleRows, rows[place].Where(), "the rule's first row alone is read here", "delete the row");
  }
}

void CheckFreeRows(const Rule& rule, Flaws& flaws) {
  for (const Row& row : rule.In(Table::kCombination)) {
    CheckWord(flaws, Codes::kUnknownSetPrice, row.Where(), "PriceType", row.Text("PriceType"), SetPrices(),
              "no kind of price: the tier takes the pieces and gives nothing");
  }
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    CheckKind(row, flaws);
    if (row.Text("PluType") != GoodsKind::kBrand) continue;
    flaws.Add(Codes::kBrandInFreeSet, row.Where(), "PluType BRD: no line joins a free combination by its brand",
              "write rows for the articles or the category");
  }
}

void CheckFixedRows(const Rule& rule, Flaws& flaws) {
  const Rows& prices = rule.In(Table::kCombination);
  CheckFirstRowAlone(prices, flaws);
  if (!prices.empty()) {
    CheckWord(flaws, Codes::kUnknownSetPrice, prices.front().Where(), "PriceType", prices.front().Text("PriceType"),
              FixedPrices(), "no kind of price of a bundle: nothing is given");
  }
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    CheckCode(row, flaws);
    RefuseKind(row, "the code is taken for that of an article", flaws);
  }
}

void CheckChoiceRows(const Rule& rule, Flaws& flaws) {
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    CheckCode(row, flaws);
    RefuseKind(row, "the code is taken for that of an article", flaws);
  }
}

void CheckConditionRows(const Rule& rule, Flaws& flaws) {
  for (const Row& row : rule.In(Table::kCombinationGoods)) {
    CheckClassWord(row, flaws);
    CheckWord(flaws, Codes::kUnknownPriceKind, row.Where(), "DscType", row.Text("DscType"), Prices(),
              "no kind of price: the row gives nothing");
  }
  CheckOneClass(rule.In(Table::kCombinationGoods), flaws);
  for (const Row& row : rule.In(Table::kCombinationDemand)) CheckClassWord(row, flaws);
  CheckFirstRowAlone(rule.In(Table::kCombinationControl), flaws);
  if (rule.In(Table::kCombinationDemand).empty() && rule.In(Table::kCombinationControl).empty()) {
    flaws.Add(Codes::kNoCondition, rule.Where(), "the rule asks for nothing: it gives on every sale with its goods",
              std::string("write what has to be bought into ") + Table::kCombinationDemand);
  }
}

// --- Full-amount rules ----------------------------------------------------------------------------------------------

Rows OfList(const Rows& rows, const std::string& listCode) {
  Rows own;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(own),
               [&](const Row& row) { return row.Text("ListCode") == listCode; });
  return own;
}

void CheckWithoutList(const Rows& rows, const Rows& lists, Flaws& flaws) {
  for (const Row& row : rows) {
    const std::string code = row.Text("ListCode");
    const bool hasList =
        std::any_of(lists.begin(), lists.end(), [&](const Row& list) { return list.Text("ListCode") == code; });
    if (hasList) continue;
    flaws.Add(Codes::kRowWithoutList, row.Where(), "the rule has no list " + Shown(code) + ": the row does nothing",
              std::string("write the ListCode of a row of ") + Table::kList);
  }
}

void CheckList(const Rule& rule, const Row& list, Flaws& flaws) {
  const std::string area = list.Text("ConAreaType");
  const std::string code = list.Text("ListCode");
  CheckWord(flaws, Codes::kUnknownArea, list.Where(), "ConAreaType", area, Areas(), "no area: the list counts nothing");
  const Rows goods = OfList(rule.In(Table::kConditionGoods), code);
  if (area == ConditionArea::kChosenLines && goods.empty()) {
    flaws.Add(Codes::kAreaWithoutGoods, list.Where(),
              std::string("ConAreaType DES and no rows of the list in ") + Table::kConditionGoods + ": nothing counts",
              "write the goods there, or ConAreaType ALL");
  }
  if (area == ConditionArea::kChosenLines) CheckSomeIn(goods, flaws);
  if (area == ConditionArea::kWholeSale && !goods.empty()) {
    flaws.Add(Codes::kIdleRows, goods.front().Where(),
              "the list counts the whole sale (ConAreaType ALL): its goods are not looked at",
              "write ConAreaType DES, or delete the rows");
  }
  if (!OfList(rule.In(Table::kListTier), code).empty()) return;
  flaws.Add(Codes::kListWithoutTier, list.Where(),
            std::string("the list has no rows in ") + Table::kListTier + ": it gives nothing",
            "write a tier with this ListCode");
}

void CheckReduceRows(const Rule& rule, Flaws& flaws) {
  const Rows& lists = rule.In(Table::kList);
  for (const Row& list : lists) CheckList(rule, list, flaws);
  if (lists.empty()) return;
  CheckWithoutList(rule.In(Table::kConditionGoods), lists, flaws);
  CheckWithoutList(rule.In(Table::kListTier), lists, flaws);
}

void CheckUnit(const Row& row, const char* column, Flaws& flaws) {
  const std::string word = row.Text(column);
  if (UnitOf(Trimmed(word).c_str()) != TierUnit::Unknown) return;
  CheckWord(flaws, Codes::kUnknownUnit, row.Where(), column, word, Units(), "no unit: the row gives nothing");
}

void CheckUnits(const Rule& rule, const Rows& rows, Flaws& flaws) {
  // Offers hand the gift's unit to the host.
  const bool offers = rule.Is(TypeWord::kGift) || rule.Is(TypeWord::kExchange);
  for (const Row& row : rows) {
    CheckUnit(row, "BaseConType", flaws);
    if (!offers) CheckUnit(row, "BaseDscType", flaws);
  }
}

void CheckGiftRows(const Rule& rule, Flaws& flaws) {
  CheckUnits(rule, rule.In(Table::kGift), flaws);
  for (const Row& row : rule.In(Table::kGift)) CheckCode(row, flaws);
  CheckSomeIn(rule.In(Table::kConditionGoods), flaws);
}

void CheckOfferPrices(const Rule& rule, Flaws& flaws) {
  const bool isGift = rule.Is(TypeWord::kGift);
  for (const Row& row : rule.In(Table::kGift)) {
    const double price = row.Number("DscPrice");
    if (isGift && price > 0) {
      flaws.Add(Codes::kGiftPrice, row.Where(), "a gift with DscPrice " + Shown(price) + " has to be paid for",
                "write DscPrice 0, or ProType MZHG in " + rule.File);
    }
    if (!isGift && price == 0) {
      flaws.Add(Codes::kGiftPrice, row.Where(), "an exchange purchase with DscPrice 0 is a gift",
                "write the price, or ProType MZZP in " + rule.File);
    }
  }
}

/// Where rows are read by the lines of a sale, a second row of one key is taken for the first.
void CheckKeys(const Rule& rule, const char* table, Flaws& flaws) {
  std::set<std::string> keys;
  for (const Row& row : rule.In(table)) {
    const Place place = row.Where();
    if (keys.insert(place.Key).second) continue;
    flaws.Add(Codes::kSameKey, place, "another row of the rule has this key, and one of the two is left out",
              "give each row a SerialNo of its own");
  }
}

void CheckAllKeys(const Rule& rule, Flaws& flaws) {
  for (const char* const table : {Table::kDirect, Table::kConditionGoods, Table::kGoodsTier})
    CheckKeys(rule, table, flaws);
  if (rule.Is(TypeWord::kFree)) CheckKeys(rule, Table::kCombinationGoods, flaws);
}

void CheckRowsOfType(const Rule& rule, Flaws& flaws) {
  CheckAllKeys(rule, flaws);
  CheckDirectRows(rule, flaws);
  if (rule.Is(TypeWord::kFree)) CheckFreeRows(rule, flaws);
  if (rule.Is(TypeWord::kFixed)) CheckFixedRows(rule, flaws);
  if (rule.Is(TypeWord::kChoice)) CheckChoiceRows(rule, flaws);
  if (rule.Is(TypeWord::kCondition)) CheckConditionRows(rule, flaws);
  if (rule.Is(TypeWord::kReduce)) CheckReduceRows(rule, flaws);
  if (rule.Is(TypeWord::kGoods)) {
    CheckUnits(rule, rule.In(Table::kGoodsTier), flaws);
    for (const Row& row : rule.In(Table::kGoodsTier)) CheckKind(row, flaws);
  }
  const bool offers = rule.Is(TypeWord::kGift) || rule.Is(TypeWord::kExchange);
  if (offers || rule.Is(TypeWord::kGoodsFree)) CheckGiftRows(rule, flaws);
  if (offers) CheckOfferPrices(rule, flaws);
}

}  // namespace

void CheckRows(const Rule& rule, Flaws& flaws) {
  for (const auto& [table, rows] : rule.RowsByTable) {
    for (const Row& row : rows) CheckColumns(row, flaws);
  }
  for (const Row& row : rule.In(Table::kConditionGoods)) {
    CheckKind(row, flaws);
    CheckRange(row, flaws);
  }
  CheckRowsOfType(rule, flaws);
}

}  // namespace Corvane::Host::Lint
