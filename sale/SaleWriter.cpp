#include "sale/SaleWriter.h"

#include <tinyxml.h>

#include <string>
#include <utility>

#include "base/Numbers.h"
#include "base/Walk.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

namespace {

/// An element under construction. Attributes leave in the order in which they are set.
class Element {
 public:
  explicit Element(TiXmlElement& element) : m_element(element) {}

  Element Child(Text name) const {
    auto* child = new TiXmlElement(name);  // owned by its parent once it is linked
    m_element.LinkEndChild(child);
    return Element(*child);
  }
  const Element& Word(Text name, Text value) const {
    m_element.SetAttribute(name, OrEmpty(value));
    return *this;
  }
  const Element& F2(Text name, double value) const { return Word(name, FormatF2(value).c_str()); }
  const Element& F4(Text name, double value) const { return Word(name, FormatF4(value).c_str()); }
  const Element& I(Text name, std::int32_t value) const { return Word(name, FormatI(value).c_str()); }
  /// A double cut toward zero: 9.9 leaves as "9".
  const Element& CutI(Text name, double value) const { return I(name, TruncToInt32(value)); }

 private:
  TiXmlElement& m_element;
};

/// A result document: declaration and the element `Sale`.
class ResultDocument {
 public:
  ResultDocument(Text billNo, Text orgCode) {
    m_document.LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
    auto* sale = new TiXmlElement("Sale");
    m_document.LinkEndChild(sale);
    m_sale = sale;
    Sale().Word("BillNo", billNo).Word("OrgCode", orgCode);
  }

  Element Sale() const { return Element(*m_sale); }

  std::string Print() const {
    TiXmlPrinter printer;
    printer.SetIndent("    ");
    printer.SetLineBreak("\n");
    m_document.Accept(&printer);
    return printer.Str();
  }

 private:
  TiXmlDocument m_document;
  TiXmlElement* m_sale = nullptr;  // owned by the document
};

/// The columns that a discount row and an apportion row share; they differ in the names of quantity and money.
struct RowNames {
  Text Num;
  Text Money;
};
constexpr RowNames kResultNames{"DisNum", "DisMoney"};
constexpr RowNames kApportionNames{"AppNum", "AppMoney"};

Element AddRow(const Element& group, const std::string& serialNo, Text pluCode, const ProResult& row,
               const RowNames& names) {
  const Element data = group.Child("Data");
  data.Word("SerialNo", serialNo.c_str())
      .Word("PluCode", pluCode)
      .F2(names.Num, row.DisNum)
      .F2(names.Money, row.DisMoney)
      .Word("ProBillNo", row.ProBillNo)
      .Word("ProType", row.ProType)
      .Word("IsVip", row.IsVip ? "1" : "0")
      .Word("VipType", row.VipType);
  return data;
}

/// What both forms tell of a line first.
Element AddLineHead(const Element& group, const SalePlu& line) {
  const Element data = group.Child("Data");
  data.I("SerialNo", line.SerialNo)
      .Word("PluCode", line.PluCode)
      .F2("Price", line.Price)
      .F4("FinalPrice", line.FinalPrice)
      .F2("PluCount", line.PluCount)
      .F2("DisNum", line.DisNum)
      .F2("Total", line.Total);
  return data;
}

void AddLine(const Element& group, const SalePlu& line) {
  AddLineHead(group, line)
      .CutI("PackCnt", line.PackCnt)
      .Word("BRD", line.BRD)
      .Word("CAT", line.CAT)
      .Word("SaleDate", line.SaleDate)
      .Word("SaleTime", line.SaleTime)
      .I("PluDtId", line.PluDtId)
      .I("PageNo", line.PageNo)
      .I("LnNo", line.LnNo)
      .CutI("YhBefore", line.YhBefore)  // cut on the way out, and so is VipPrice: the format has whole numbers here
      .Word("ClsId", line.ClsId)
      .Word("PluID", line.PluID)
      .CutI("VipPrice", line.VipPrice);
}

/// All lines' rows of one kind, numbered from 1 over the whole sale.
void AddRowsOfLines(const Element& group, const std::vector<SalePlu>& lines, std::vector<ProResult> SalePlu::*rows,
                    const RowNames& names) {
  std::int32_t serialNo = 0;
  for (const SalePlu& line : LastToFirst(lines)) {
    for (const ProResult& row : LastToFirst(line.*rows)) {
      AddRow(group, FormatI(++serialNo), line.PluCode, row, names).I("RowID", line.SerialNo);
    }
  }
}

void AddOffers(const Element& group, const SaleProGift& gift) {
  const Element offers = group.Child("ProGift");
  offers.Word("ProBillNo", gift.ProBillNo)
      .F2("Total", gift.Total)
      .F2("LeftTotal", gift.LeftTotal)
      .F2("UsedTotal", gift.UsedTotal);
  for (const PluAddAction& row : LastToFirst(gift.Rows)) {
    offers.Child("Data")
        .I("SerialNo", row.SerialNo)
        .Word("PluCode", row.PluCode)
        .Word("PluType", row.PluType)
        .Word("BaseConTp", row.BaseConTp)
        .F2("BaseConNum", row.BaseConNum)
        .Word("BaseDscTp", row.BaseDscTp)
        .F2("BaseDscNum", row.BaseDscNum)
        .F2("AddConNum", row.AddConNum)
        .F2("AddDscNum", row.AddDscNum)
        .F2("SaleMaxIn", row.SaleMaxIn)
        .F2("DscPrice", row.DscPrice)
        .F2("HgPluCount", row.HgPluCount)
        .I("CanPart", row.CanPart)
        .F2("Price", row.Price);
  }
}

void AddCoupon(const Element& group, Text saleBillNo, const SaleCoupon& coupon) {
  group.Child("ProCouponS")
      .Word("SendSaleNo", saleBillNo)
      .Word("BillNo", coupon.BillNo)
      .Word("CouponTypeCode", coupon.CouponTypeCode)
      .Word("BgnDate", coupon.BgnDate)
      .Word("EndDate", coupon.EndDate)
      .Word("Value", coupon.Value)
      .Word("Remark", coupon.Remark);
}

}  // namespace

std::string SaleXml(const ProSale& sale) {
  const ResultDocument document(sale.BillNo, sale.OrgCode);
  const Element plu = document.Sale().Child("Plu");
  const Element results = document.Sale().Child("ProResult");
  const Element apportions = document.Sale().Child("Apportion");
  const Element gifts = document.Sale().Child("ProGifts");
  const Element coupons = document.Sale().Child("ProCoupons");
  for (const SalePlu& line : LastToFirst(sale.Plus)) AddLine(plu, line);
  AddRowsOfLines(results, sale.Plus, &SalePlu::ProResults, kResultNames);
  AddRowsOfLines(apportions, sale.Plus, &SalePlu::Apportions, kApportionNames);
  for (const ProResult& row : LastToFirst(sale.SaleResults)) AddRow(results, "0", "*", row, kResultNames);
  for (const SaleProGift& gift : LastToFirst(sale.ProGifts)) AddOffers(gifts, gift);
  for (const SaleCoupon& coupon : LastToFirst(sale.Coupons)) AddCoupon(coupons, sale.BillNo, coupon);
  return document.Print();
}

std::string LineXml(Text orgCode, const SalePlu& line) {
  Log(LogText::kWritingLine);
  const ResultDocument document(line.BillNo, orgCode);
  // With decimals here, a whole number in the Sale form.
  AddLineHead(document.Sale().Child("Plu"), line).F2("PackCnt", line.PackCnt);
  const std::string serialNo = FormatI(line.SerialNo);
  const Element results = document.Sale().Child("ProResult");
  for (const ProResult& row : LastToFirst(line.ProResults)) {
    AddRow(results, serialNo, line.PluCode, row, kResultNames).I("RowID", line.SerialNo);
  }
  const Element apportions = document.Sale().Child("Apportion");
  for (const Apportion& row : LastToFirst(line.Apportions)) {
    AddRow(apportions, serialNo, line.PluCode, row, kApportionNames).I("RowID", line.SerialNo);
  }
  return document.Print();
}

}  // namespace Corvane
