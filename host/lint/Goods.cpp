#include "host/lint/Goods.h"

#include <QFile>
#include <QString>
#include <QXmlStreamReader>

#include "host/ValueForm.h"
#include "host/lint/Words.h"
#include "sale/ProDetailKey.h"

namespace Corvane::Host::Lint {

namespace {

constexpr const char* kFile = "goods.xml";

Place At(qint64 line) {
  Place place;
  place.File = kFile;
  place.Line = static_cast<int>(line);
  return place;
}

std::optional<double> PriceIn(const QXmlStreamReader& reader, Flaws& flaws) {
  const QString value = reader.attributes().value(QLatin1String("Price")).toString();
  if (value.isEmpty()) return std::nullopt;
  if (Fits(value, ValueForm::kNumber)) return value.toDouble();
  flaws.Add(Codes::kBadGoodsList, At(reader.lineNumber()),
            "Price " + Shown(value.toStdString()) + " is not " + WordsOf(ValueForm::kNumber), "write it so");
  return std::nullopt;
}

}  // namespace

Goods Goods::Read(const std::string& folder, Flaws& flaws) {
  Goods goods;
  QFile file(QString::fromStdString(folder) + QLatin1Char('/') + QLatin1String(kFile));
  if (!file.exists()) return goods;
  if (!file.open(QIODevice::ReadOnly)) {
    flaws.Add(Codes::kBadGoodsList, At(0), "can't be read: " + file.errorString().toStdString(),
              "let this user read it");
    return goods;
  }
  QXmlStreamReader reader(&file);
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    const auto text = [&](const char* name) {
      return reader.attributes().value(QLatin1String(name)).toString().toStdString();
    };
    if (text("PluCode").empty()) continue;
    goods.m_articles[text("PluCode")] = {PriceIn(reader, flaws), text("CAT"), text("BRD")};
  }
  if (reader.hasError()) {
    flaws.Add(Codes::kBadGoodsList, At(reader.lineNumber()), "is not XML: " + reader.errorString().toStdString(),
              "mend the file; goods and prices are not compared with it");
    goods.m_articles.clear();
  }
  for (const auto& [code, article] : goods.m_articles) {
    if (!article.Category.empty()) goods.m_categories[article.Category].push_back(&article);
    if (!article.Brand.empty()) goods.m_brands[article.Brand].push_back(&article);
  }
  return goods;
}

const Article* Goods::Find(const std::string& code) const {
  const auto found = m_articles.find(code);
  return found == m_articles.end() ? nullptr : &found->second;
}

bool Goods::MayHave(const std::string& kind, const std::string& code) const {
  if (kind == GoodsKind::kGoods) return m_articles.empty() || Find(code) != nullptr;
  if (kind == GoodsKind::kCategory) return m_categories.empty() || m_categories.count(code) > 0;
  if (kind == GoodsKind::kBrand) return m_brands.empty() || m_brands.count(code) > 0;
  return true;
}

std::vector<double> Goods::PricesOf(const std::string& kind, const std::string& code) const {
  std::vector<const Article*> named;
  if (kind == GoodsKind::kGoods && Find(code) != nullptr) named.push_back(Find(code));
  const auto& classes = kind == GoodsKind::kCategory ? m_categories : m_brands;
  const auto found = classes.find(code);
  if (kind != GoodsKind::kGoods && found != classes.end()) named = found->second;
  std::vector<double> prices;
  for (const Article* const article : named) {
    if (article->Price) prices.push_back(*article->Price);
  }
  return prices;
}

}  // namespace Corvane::Host::Lint
