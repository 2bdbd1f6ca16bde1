#ifndef QNCORVANE_DB_READITEM_H
#define QNCORVANE_DB_READITEM_H

#include <QString>

#include "db/SqlTarget.h"

namespace Corvane {

/// One column to read and where to put it, for `QnPosDBPro::ReadRecord`:
///
///     db.ReadRecord(handle, {{"PluCode", &code}, {"Price", &price}});
struct ReadItem {
  QString Column;    ///< Column name, in any letter case.
  SqlTarget Target;  ///< Its address decides the form of the value.
};

}  // namespace Corvane

#endif
