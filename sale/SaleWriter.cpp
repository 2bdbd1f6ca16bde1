#include "sale/SaleWriter.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/Walk.h"
#include "base/XmlColumns.h"
#include "base/XmlWriter.h"
#include "log/Log.h"
#include "log/LogTexts.h"

namespace Corvane {

namespace {

using LineColumn = From<SalePlu>;

/// What both forms tell of a line first.
constexpr XmlColumn<SalePlu> kLineHead[] = {
    {"SerialNo", LineColumn::I<&SalePlu::SerialNo>},  {"PluCode", LineColumn::Word<&SalePlu::PluCode>},
    {"Price", LineColumn::F2<&SalePlu::Price>},       {"FinalPrice", LineColumn::F4<&SalePlu::FinalPrice>},
    {"PluCount", LineColumn::F2<&SalePlu::PluCount>}, {"DisNum", LineColumn::F2<&SalePlu::DisNum>},
    {"Total", LineColumn::F2<&SalePlu::Total>},
};

/// What the Sale form tells behind that. PackCnt is cut here and has decimals in the Single form; YhBefore and VipPrice
/// are cut, too: the format has whole numbers here.
constexpr XmlColumn<SalePlu> kLineTail[] = {
    {"PackCnt", LineColumn::CutI<&SalePlu::PackCnt>},   {"BRD", LineColumn::Word<&SalePlu::BRD>},
    {"CAT", LineColumn::Word<&SalePlu::CAT>},           {"SaleDate", LineColumn::Word<&SalePlu::SaleDate>},
    {"SaleTime", LineColumn::Word<&SalePlu::SaleTime>}, {"PluDtId", LineColumn::I<&SalePlu::PluDtId>},
    {"PageNo", LineColumn::I<&SalePlu::PageNo>},        {"LnNo", LineColumn::I<&SalePlu::LnNo>},
    {"YhBefore", LineColumn::CutI<&SalePlu::YhBefore>}, {"ClsId", LineColumn::Word<&SalePlu::ClsId>},
    {"PluID", LineColumn::Word<&SalePlu::PluID>},       {"VipPrice", LineColumn::CutI<&SalePlu::VipPrice>},
};

using RowColumn = From<ProResult>;

constexpr XmlColumn<ProResult> kResultColumns[] = {
    {"DisNum", RowColumn::F2<&ProResult::DisNum>},         {"DisMoney", RowColumn::F2<&ProResult::DisMoney>},
    {"ProBillNo", RowColumn::Word<&ProResult::ProBillNo>}, {"ProType", RowColumn::Word<&ProResult::ProType>},
    {"IsVip", RowColumn::Flag<&ProResult::IsVip>},         {"VipType", RowColumn::Word<&ProResult::VipType>},
};

/// The same fields; quantity and money bear other names.
constexpr XmlColumn<ProResult> kApportionColumns[] = {
    {"AppNum", RowColumn::F2<&ProResult::DisNum>},         {"AppMoney", RowColumn::F2<&ProResult::DisMoney>},
    {"ProBillNo", RowColumn::Word<&ProResult::ProBillNo>}, {"ProType", RowColumn::Word<&ProResult::ProType>},
    {"IsVip", RowColumn::Flag<&ProResult::IsVip>},         {"VipType", RowColumn::Word<&ProResult::VipType>},
};

using GiftColumn = From<SaleProGift>;
constexpr XmlColumn<SaleProGift> kGiftColumns[] = {
    {"ProBillNo", GiftColumn::Word<&SaleProGift::ProBillNo>},
    {"Total", GiftColumn::F2<&SaleProGift::Total>},
    {"LeftTotal", GiftColumn::F2<&SaleProGift::LeftTotal>},
    {"UsedTotal", GiftColumn::F2<&SaleProGift::UsedTotal>},
};

using OfferColumn = From<PluAddAction>;
constexpr XmlColumn<PluAddAction> kOfferColumns[] = {
    {"SerialNo", OfferColumn::I<&PluAddAction::SerialNo>},
    {"PluCode", OfferColumn::Word<&PluAddAction::PluCode>},
    {"PluType", OfferColumn::Word<&PluAddAction::PluType>},
    {"BaseConTp", OfferColumn::Word<&PluAddAction::BaseConTp>},
    {"BaseConNum", OfferColumn::F2<&PluAddAction::BaseConNum>},
    {"BaseDscTp", OfferColumn::Word<&PluAddAction::BaseDscTp>},
    {"BaseDscNum", OfferColumn::F2<&PluAddAction::BaseDscNum>},
    {"AddConNum", OfferColumn::F2<&PluAddAction::AddConNum>},
    {"AddDscNum", OfferColumn::F2<&PluAddAction::AddDscNum>},
    {"SaleMaxIn", OfferColumn::F2<&PluAddAction::SaleMaxIn>},
    {"DscPrice", OfferColumn::F2<&PluAddAction::DscPrice>},
    {"HgPluCount", OfferColumn::F2<&PluAddAction::HgPluCount>},
    {"CanPart", OfferColumn::I<&PluAddAction::CanPart>},
    {"Price", OfferColumn::F2<&PluAddAction::Price>},
};

using CouponColumn = From<SaleCoupon>;
constexpr XmlColumn<SaleCoupon> kCouponColumns[] = {
    {"BillNo", CouponColumn::Word<&SaleCoupon::BillNo>},
    {"CouponTypeCode", CouponColumn::Word<&SaleCoupon::CouponTypeCode>},
    {"BgnDate", CouponColumn::Word<&SaleCoupon::BgnDate>},
    {"EndDate", CouponColumn::Word<&SaleCoupon::EndDate>},
    {"Value", CouponColumn::Word<&SaleCoupon::Value>},
    {"Remark", CouponColumn::Word<&SaleCoupon::Remark>},
};

void BeginSale(XmlWriter& writer, Text billNo, Text orgCode) {
  writer.Begin("Sale");
  writer.Word("BillNo", billNo);
  writer.Word("OrgCode", orgCode);
}

/// A row, which stays open for what else belongs to it.
template <class ColumnTable>
void BeginRow(XmlWriter& writer, std::int32_t serialNo, Text pluCode, const ProResult& row, const ColumnTable& table) {
  writer.Begin("Data");
  writer.I("SerialNo", serialNo);
  writer.Word("PluCode", pluCode);
  WriteAttributes(writer, table, row);
}

template <class ColumnTable>
void WriteLineRow(XmlWriter& writer, std::int32_t serialNo, const SalePlu& line, const ProResult& row,
                  const ColumnTable& table) {
  BeginRow(writer, serialNo, line.PluCode, row, table);
  writer.I("RowID", line.SerialNo);
  writer.End();
}

/// All lines' rows of one kind, numbered from 1 over the whole sale.
template <class ColumnTable>
void WriteRowsOfLines(XmlWriter& writer, const std::vector<SalePlu>& lines, std::vector<ProResult> SalePlu::*rows,
                      const ColumnTable& table) {
  std::int32_t serialNo = 0;
  for (const SalePlu& line : LastToFirst(lines)) {
    for (const ProResult& row : LastToFirst(line.*rows)) WriteLineRow(writer, ++serialNo, line, row, table);
  }
}

/// One line's rows of one kind, in a group of their own.
template <class ColumnTable>
void WriteRowsOfLine(XmlWriter& writer, std::string_view group, const SalePlu& line, const std::vector<ProResult>& rows,
                     const ColumnTable& table) {
  writer.Begin(group);
  for (const ProResult& row : LastToFirst(rows)) WriteLineRow(writer, line.SerialNo, line, row, table);
  writer.End();
}

void WriteLines(XmlWriter& writer, const std::vector<SalePlu>& lines) {
  writer.Begin("Plu");
  for (const SalePlu& line : LastToFirst(lines)) {
    writer.Begin("Data");
    WriteAttributes(writer, kLineHead, line);
    WriteAttributes(writer, kLineTail, line);
    writer.End();
  }
  writer.End();
}

void WriteResults(XmlWriter& writer, const ProSale& sale) {
  writer.Begin("ProResult");
  WriteRowsOfLines(writer, sale.Plus, &SalePlu::ProResults, kResultColumns);
  for (const ProResult& row : LastToFirst(sale.SaleResults)) {
    BeginRow(writer, 0, "*", row, kResultColumns);
    writer.End();
  }
  writer.End();
}

void WriteApportions(XmlWriter& writer, const ProSale& sale) {
  writer.Begin("Apportion");
  WriteRowsOfLines(writer, sale.Plus, &SalePlu::Apportions, kApportionColumns);
  writer.End();
}

void WriteGifts(XmlWriter& writer, const std::vector<SaleProGift>& gifts) {
  writer.Begin("ProGifts");
  for (const SaleProGift& gift : LastToFirst(gifts)) {
    writer.Begin("ProGift");
    WriteAttributes(writer, kGiftColumns, gift);
    for (const PluAddAction& row : LastToFirst(gift.Rows)) {
      writer.Begin("Data");
      WriteAttributes(writer, kOfferColumns, row);
      writer.End();
    }
    writer.End();
  }
  writer.End();
}

void WriteCoupons(XmlWriter& writer, const ProSale& sale) {
  writer.Begin("ProCoupons");
  for (const SaleCoupon& coupon : LastToFirst(sale.Coupons)) {
    writer.Begin("ProCouponS");
    writer.Word("SendSaleNo", sale.BillNo);
    WriteAttributes(writer, kCouponColumns, coupon);
    writer.End();
  }
  writer.End();
}

// The lengths of elements whose codes and numbers are of the usual size.
constexpr std::size_t kFrameLength = 512;
constexpr std::size_t kLineLength = 400;
constexpr std::size_t kRowLength = 200;
constexpr std::size_t kOfferLength = 350;

std::size_t LengthOf(const SalePlu& line) {
  return kLineLength + kRowLength * (line.ProResults.size() + line.Apportions.size());
}

/// About as long as the result will be: a result that turns out longer only costs further memory.
std::size_t LengthOf(const ProSale& sale) {
  std::size_t length = kFrameLength + kRowLength * (sale.SaleResults.size() + sale.Coupons.size());
  for (const SalePlu& line : sale.Plus) length += LengthOf(line);
  for (const SaleProGift& gift : sale.ProGifts) length += kRowLength + kOfferLength * gift.Rows.size();
  return length;
}

}  // namespace

std::string SaleXml(const ProSale& sale) {
  XmlWriter writer(LengthOf(sale));
  BeginSale(writer, sale.BillNo, sale.OrgCode);
  WriteLines(writer, sale.Plus);
  WriteResults(writer, sale);
  WriteApportions(writer, sale);
  WriteGifts(writer, sale.ProGifts);
  WriteCoupons(writer, sale);
  writer.End();
  return writer.Take();
}

std::string LineXml(Text orgCode, const SalePlu& line) {
  Log(LogText::kWritingLine);
  XmlWriter writer(kFrameLength + LengthOf(line));
  BeginSale(writer, line.BillNo, orgCode);
  writer.Begin("Plu");
  writer.Begin("Data");
  WriteAttributes(writer, kLineHead, line);
  writer.F2("PackCnt", line.PackCnt);
  writer.End();
  writer.End();
  WriteRowsOfLine(writer, "ProResult", line, line.ProResults, kResultColumns);
  WriteRowsOfLine(writer, "Apportion", line, line.Apportions, kApportionColumns);
  writer.End();
  return writer.Take();
}

}  // namespace Corvane
