#include "db/OdbcTimeout.h"

#include <dlfcn.h>
#include <QMetaType>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>
#include <cstdint>

namespace Corvane {
namespace {

constexpr std::int32_t kQueryTimeout = 0;  ///< SQL_ATTR_QUERY_TIMEOUT
constexpr std::int32_t kIsUnsigned = -5;   ///< SQL_IS_UINTEGER

using SetConnectAttribute = short (*)(void* connection, std::int32_t attribute, void* value, std::int32_t length);

/// The driver manager, if it is in the process. It stays there, as Qt's driver does.
SetConnectAttribute FindSetConnectAttribute() {
  void* const manager = dlopen("libodbc.so.2", RTLD_LAZY | RTLD_NOLOAD);
  if (manager == nullptr) return nullptr;
  return reinterpret_cast<SetConnectAttribute>(dlsym(manager, "SQLSetConnectAttr"));
}

}  // namespace

void SetOdbcQueryTimeout(const QSqlDatabase& connection, int seconds) {
  // Qt's driver hands its handle over under a name that it leaves to others to make known.
  qRegisterMetaType<void*>("SQLHANDLE");
  const QVariant handle = connection.driver()->handle();
  if (!handle.isValid()) return;
  const SetConnectAttribute set = FindSetConnectAttribute();
  if (set == nullptr) return;
  void* const odbc = *static_cast<void* const*>(handle.constData());
  // ODBC takes a number in the place of an address.
  auto* const value =
      reinterpret_cast<void*>(static_cast<std::intptr_t>(seconds));  // NOLINT(performance-no-int-to-ptr)
  set(odbc, kQueryTimeout, value, kIsUnsigned);
}

}  // namespace Corvane
