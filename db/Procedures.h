#ifndef QNCORVANE_DB_PROCEDURES_H
#define QNCORVANE_DB_PROCEDURES_H

#include <QList>
#include <QString>

#include "db/ProcArg.h"
#include "db/ProcParam.h"

namespace Corvane {

class Connection;

/// As `QnPosDBPro::exexProc`.
bool RunProc(Connection& connection, const QString& name, const QString& args, QString& error);

/// As `QnPosDBPro::exexProcWithArgs`.
bool RunProcWithArgs(Connection& connection, const QString& name, QList<ProcArg>& args, QString& error);

/// As `QnPosDBPro::ExecProcFormat`.
bool RunProcByPosition(Connection& connection, const QString& name, const QList<ProcParam>& params);

}  // namespace Corvane

#endif
