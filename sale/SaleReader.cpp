#include "sale/SaleReader.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/Numbers.h"
#include "base/XmlFields.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

namespace {

using SaleField = Into<ProSale>;
constexpr XmlField<ProSale> kSaleFields[] = {
    {"OrgCode", SaleField::KeptText<&ProSale::OrgCode>},
    {"BillNo", SaleField::KeptText<&ProSale::BillNo>},
    {"IsCalc", SaleField::KeptText<&ProSale::IsCalc>},
};

using PluField = Into<SalePlu>;
constexpr XmlField<SalePlu> kPluFields[] = {
    {"SerialNo", PluField::Integer<&SalePlu::SerialNo>},    {"PluCode", PluField::KeptText<&SalePlu::PluCode>},
    {"PluType", PluField::KeptText<&SalePlu::PluType>},     {"Price", PluField::Double<&SalePlu::Price>},
    {"FinalPrice", PluField::Double<&SalePlu::FinalPrice>}, {"PluCount", PluField::Double<&SalePlu::PluCount>},
    {"SaleDate", PluField::KeptText<&SalePlu::SaleDate>},   {"SaleTime", PluField::KeptText<&SalePlu::SaleTime>},
    {"Total", PluField::Double<&SalePlu::Total>},           {"PackCnt", PluField::Double<&SalePlu::PackCnt>},
    {"PluDtId", PluField::CutInteger<&SalePlu::PluDtId>},   {"PageNo", PluField::CutInteger<&SalePlu::PageNo>},
    {"LnNo", PluField::CutInteger<&SalePlu::LnNo>},         {"YhBefore", PluField::Double<&SalePlu::YhBefore>},
    {"ClsId", PluField::KeptText<&SalePlu::ClsId>},         {"PluID", PluField::KeptText<&SalePlu::PluID>},
    {"VipPrice", PluField::Double<&SalePlu::VipPrice>},
};

using PayField = Into<SalePay>;
constexpr XmlField<SalePay> kPayFields[] = {
    {"PayMode", PayField::KeptText<&SalePay::PayMode>},
    {"PayCardNo", PayField::KeptText<&SalePay::PayCardNo>},
    {"PayMoney", PayField::Double<&SalePay::PayMoney>},
};

constexpr XmlField<SaleVip> kVipFields[] = {
    {"VipType", Into<SaleVip>::KeptText<&SaleVip::VipType>},
};

using GiftField = Into<SaleGift>;
constexpr XmlField<SaleGift> kGiftFields[] = {
    {"SerialNo", GiftField::KeptText<&SaleGift::SerialNo>}, {"PluCode", GiftField::KeptText<&SaleGift::PluCode>},
    {"Price", GiftField::Double<&SaleGift::Price>},         {"PluCount", GiftField::Double<&SaleGift::PluCount>},
    {"Total", GiftField::Double<&SaleGift::Total>},         {"ProBillNo", GiftField::KeptText<&SaleGift::ProBillNo>},
    {"DscPrice", GiftField::Double<&SaleGift::DscPrice>},   {"SaleBillNo", GiftField::KeptText<&SaleGift::SaleBillNo>},
};

using CouponField = Into<SaleCoupon>;
/// The two dates change places on reading, and the writer doesn't change them back: the host gets them exchanged.
constexpr XmlField<SaleCoupon> kCouponFields[] = {
    {"BillNo", CouponField::KeptText<&SaleCoupon::BillNo>},
    {"CouponTypeCode", CouponField::KeptText<&SaleCoupon::CouponTypeCode>},
    {"CouponValue", CouponField::KeptText<&SaleCoupon::Value>},
    {"BgnDate", CouponField::KeptText<&SaleCoupon::EndDate>},
    {"EndDate", CouponField::KeptText<&SaleCoupon::BgnDate>},
};

using ProGiftField = Into<SaleProGift>;
constexpr XmlField<SaleProGift> kProGiftFields[] = {
    {"Total", ProGiftField::Double<&SaleProGift::Total>},
    {"ProBillNo", ProGiftField::KeptText<&SaleProGift::ProBillNo>},
    {"LeftTotal", ProGiftField::Double<&SaleProGift::LeftTotal>},
    {"UsedTotal", ProGiftField::Double<&SaleProGift::UsedTotal>},
};

using OfferField = Into<PluAddAction>;
constexpr XmlField<PluAddAction> kOfferFields[] = {
    {"SerialNo", OfferField::Integer<&PluAddAction::SerialNo>},
    {"PluCode", OfferField::KeptText<&PluAddAction::PluCode>},
    {"PluType", OfferField::KeptText<&PluAddAction::PluType>},
    {"Price", OfferField::Double<&PluAddAction::Price>},
    {"DscPrice", OfferField::Double<&PluAddAction::DscPrice>},
    {"BaseConTp", OfferField::KeptText<&PluAddAction::BaseConTp>},
    {"BaseConNum", OfferField::Double<&PluAddAction::BaseConNum>},
    {"BaseDscTp", OfferField::KeptText<&PluAddAction::BaseDscTp>},
    {"BaseDscNum", OfferField::Double<&PluAddAction::BaseDscNum>},
    {"AddConNum", OfferField::Double<&PluAddAction::AddConNum>},
    {"AddDscNum", OfferField::Double<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", OfferField::Double<&PluAddAction::SaleMaxIn>},
    {"HgPluCount", OfferField::Double<&PluAddAction::HgPluCount>},
    {"CanPart", OfferField::Integer<&PluAddAction::CanPart>},
};

/// Whatever attribute the line's table doesn't know is a class that the goods belong to.
void AddLineClass(SalePlu& line, const TiXmlAttribute& attribute, TextPool& texts) {
  const std::pair<Text, Text> added(texts.Keep(attribute.Name()), texts.Keep(attribute.Value()));
  if (Same(added.first, "CAT")) line.CAT = added.second;
  if (Same(added.first, "BRD")) line.BRD = added.second;
  const bool held = std::any_of(line.LineClasses.begin(), line.LineClasses.end(), [&](const auto& pair) {
    return Same(pair.first, added.first) && Same(pair.second, added.second);
  });
  if (!held) line.LineClasses.push_back(added);
}

SalePlu ReadLine(ProSale& sale, const TiXmlElement& row) {
  SalePlu line;
  for (const TiXmlAttribute& attribute : Attributes(row)) {
    if (!ReadAttribute(kPluFields, attribute, line, sale.Texts)) AddLineClass(line, attribute, sale.Texts);
  }
  line.BillNo = sale.BillNo;
  // The attribute FinalPrice has no effect. A voided line, whose quantity is 0, has a price of 0.
  line.FinalPrice = Quotient(line.Total, line.PluCount);
  line.TotalBefore = line.Total;
  return line;
}

/// Finds a sale's lines by their numbers while a group is read.
class LinePlaces {
 public:
  /// @param isIndexed whether so many lines are sought that an index is worth its while.
  LinePlaces(const std::vector<SalePlu>& lines, bool isIndexed) : m_lines(lines), m_isIndexed(isIndexed) {
    for (std::size_t place = 0; m_isIndexed && place < lines.size(); ++place) Added(place);
  }

  /// @return the place of the first line of this number, or behind the last line.
  std::size_t Find(std::int32_t serialNo) const {
    if (m_isIndexed) {
      const auto known = m_places.find(serialNo);
      return known == m_places.end() ? m_lines.size() : known->second;
    }
    const auto known =
        std::find_if(m_lines.begin(), m_lines.end(), [&](const SalePlu& held) { return held.SerialNo == serialNo; });
    return static_cast<std::size_t>(known - m_lines.begin());
  }

  void Added(std::size_t place) {
    if (m_isIndexed) m_places.emplace(m_lines[place].SerialNo, place);
  }

 private:
  const std::vector<SalePlu>& m_lines;
  bool m_isIndexed;
  std::unordered_map<std::int32_t, std::size_t> m_places;
};

/// @return the line's place in the sale.
std::int32_t MergeLine(ProSale& sale, SalePlu line, LinePlaces& places) {
  const std::size_t place = places.Find(line.SerialNo);
  line.Index = static_cast<std::int32_t>(place);
  if (place < sale.Plus.size()) {
    sale.Plus[place] = std::move(line);
  } else {
    sale.Plus.push_back(std::move(line));
    places.Added(place);
  }
  return static_cast<std::int32_t>(place);
}

void ReadLines(ProSale& sale, const TiXmlElement& group, std::int32_t& lineIndex) {
  const TiXmlElement* const first = group.FirstChildElement();
  if (first == nullptr) return;
  LinePlaces places(sale.Plus, first->NextSiblingElement() != nullptr);
  int rows = 0;
  for (const TiXmlElement& row : ChildElements(group)) {
    if (row.FirstAttribute() == nullptr) {
      Log(LogText::kLineWithoutAttributes);
      continue;
    }
    lineIndex = MergeLine(sale, ReadLine(sale, row), places);
    ++rows;
  }
  if (rows != 1) lineIndex = -1;
}

template <class Record, class FieldTable>
Record ReadRow(const FieldTable& table, const TiXmlElement& row, TextPool& texts) {
  Record record;
  ReadAttributes(table, row, record, texts);
  return record;
}

void ReadPays(ProSale& sale, const TiXmlElement& group) {
  Log(LogText::kReadingPayments);
  for (const TiXmlElement& row : ChildElements(group)) {
    Log(LogText::kReadingPayment);
    sale.Pays.push_back(ReadRow<SalePay>(kPayFields, row, sale.Texts));
    sale.Pays.back().BillNo = sale.BillNo;
  }
}

void ReadVips(ProSale& sale, const TiXmlElement& group) {
  for (const TiXmlElement& row : ChildElements(group)) {
    sale.Vips.push_back(ReadRow<SaleVip>(kVipFields, row, sale.Texts));
    sale.Vips.back().BillNo = sale.BillNo;
  }
}

void ReadProGifts(ProSale& sale, const TiXmlElement& group) {
  sale.ProGifts.clear();
  for (const TiXmlElement& row : ChildElements(group)) {
    auto offers = ReadRow<SaleProGift>(kProGiftFields, row, sale.Texts);
    for (const TiXmlElement& offer : ChildElements(row)) {
      offers.Rows.push_back(ReadRow<PluAddAction>(kOfferFields, offer, sale.Texts));
    }
    sale.ProGifts.push_back(std::move(offers));
  }
}

void ReadGroup(ProSale& sale, const TiXmlElement& group, std::int32_t& lineIndex) {
  const Text name = group.Value();
  if (Same(name, "Plu")) {
    ReadLines(sale, group, lineIndex);
  } else if (Same(name, "PayMode")) {
    ReadPays(sale, group);
  } else if (Same(name, "Vip")) {
    ReadVips(sale, group);
  } else if (Same(name, "Gift")) {
    for (const TiXmlElement& row : ChildElements(group))
      sale.Gifts.push_back(ReadRow<SaleGift>(kGiftFields, row, sale.Texts));
  } else if (Same(name, "Coupon")) {
    for (const TiXmlElement& row : ChildElements(group))
      sale.Coupons.push_back(ReadRow<SaleCoupon>(kCouponFields, row, sale.Texts));
  } else if (Same(name, "ProGifts")) {
    ReadProGifts(sale, group);
  }
}

}  // namespace

bool ReadSale(ProSale& sale, Text xml, std::int32_t& lineIndex) {
  try {
    Log(LogText::kReadingSale);
    sale.ForgetCodes();
    const XmlDocument document(xml);
    const TiXmlElement* root = document.Root();
    if (root == nullptr) return true;
    ReadAttributes(kSaleFields, *root, sale, sale.Texts);
    for (const TiXmlElement& group : ChildElements(root)) ReadGroup(sale, group, lineIndex);
    return true;
  } catch (...) {
    return false;
  }
}

}  // namespace Corvane
