#!/usr/bin/env bash
# Tests on real database servers. They are started here, on this machine alone, with files of their own, and ended again.
#   tests/db/run.sh BUILD
# BUILD is the folder of a build with tests.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$(cd "${1:?which build folder?}" && pwd)

# A short path: a socket's name has room for little more than a hundred letters.
work=$(mktemp -d /tmp/qncorvane-db.XXXXXX)
trap 'rm -rf "$work"' EXIT

# Drivers under the names that the engine asks for, known to these tests only.
mkdir "$work/odbc" "$work/no-odbc" "$work/mdb-odbc"
driver=$build/lib/libdb_stand_in.so
cat >"$work/odbc/odbcinst.ini" <<INI
[SQL SERVER]
Driver=$driver

[Microsoft Access Driver (*.mdb,*.accdb)]
Driver=$driver
INI
cat >"$work/mdb-odbc/odbcinst.ini" <<INI
[Microsoft Access Driver (*.mdb,*.accdb)]
Driver=$(find /usr/lib -name libmdbodbcW.so -print -quit)
INI
export ODBCINI=/dev/null

echo "-- statements on each server"
python3 -B "$here/with_mariadb.py" "$work/unit" \
  env ODBCSYSINI="$work/odbc" "$build/bin/db_servers_test" --gtest_filter=-OdbcWithoutDriver.*:OdbcAccessFile.*
ODBCSYSINI="$work/no-odbc" "$build/bin/db_servers_test" --gtest_filter=OdbcWithoutDriver.*
python3 -B "$here/jet_file.py" "$work/shop.mdb"
QNCORVANE_MDB="$work/shop.mdb" ODBCSYSINI="$work/mdb-odbc" \
  "$build/bin/db_servers_test" --gtest_filter=OdbcAccessFile.*

echo "-- table definitions"
python3 -B "$here/with_mariadb.py" "$work/schema" python3 -B "$here/schema_test.py"

echo "-- sales on each server"
mkdir "$work/sales"
ODBCSYSINI="$work/odbc" python3 -B "$here/servers_test.py" "$build/lib/libQNCORVANE.so" "$work/sales"

echo "-- the safe face on a server"
mkdir "$work/face"
python3 -B "$here/face_test.py" "$build/lib/libqncorvane-host.so.1" "$work/face"
