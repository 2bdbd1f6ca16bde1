#include "db/QnPosDBPro.h"

namespace Corvane {

QnPosDBPro::QnPosDBPro(const QString& folder) : Slot(std::make_shared<Connection>(folder)) {}

QnPosDBPro::~QnPosDBPro() = default;

void QnPosDBPro::SetDbType(const QString& type) {
  if (!DriverOf(type.toUpper()).isEmpty()) Queries.clear();
  Slot->SetKind(type);
}

}  // namespace Corvane
