#include "sale/SaleReader.h"

#include <algorithm>
#include <utility>

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
  return line;
}

/// @return the line's place in the sale.
std::int32_t MergeLine(ProSale& sale, SalePlu line) {
  const auto known = std::find_if(sale.Plus.begin(), sale.Plus.end(),
                                  [&](const SalePlu& held) { return held.SerialNo == line.SerialNo; });
  line.Index = static_cast<std::int32_t>(known - sale.Plus.begin());
  const std::int32_t index = line.Index;
  if (known != sale.Plus.end()) {
    *known = std::move(line);
  } else {
    sale.Plus.push_back(std::move(line));
  }
  return index;
}

void ReadLines(ProSale& sale, const TiXmlElement& group, std::int32_t& lineIndex) {
  if (group.FirstChildElement() == nullptr) return;
  int rows = 0;
  for (const TiXmlElement& row : ChildElements(group)) {
    if (row.FirstAttribute() == nullptr) {
      Log(LogText::kLineWithoutAttributes);
      continue;
    }
    lineIndex = MergeLine(sale, ReadLine(sale, row));
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
