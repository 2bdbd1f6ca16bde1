#ifndef TOOLS_SCHEMA_H
#define TOOLS_SCHEMA_H

namespace Corvane::Tool {

/// The statements that make the engine's tables in a database of SQLite: samples/schema/sqlite.sql.
extern const char* const kSqliteSchema;

}  // namespace Corvane::Tool

#endif
