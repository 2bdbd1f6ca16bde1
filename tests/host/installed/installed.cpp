// The installed headers in C++, the one class that leaves the library among them.
#include <qncorvane/SqlArg.h>
#include <qncorvane/qncorvane.h>

#include <iostream>

int main() {
  if (FinishInitPro() != 0) return 1;
  const QString statement =
      SqlArg::getIntSQL("goods", {SqlArg("PluCode", "100101", true), SqlArg("Price", "2.50", false)});
  const QString expected = "insert into goods(PluCode,Price) values('100101',2.50);";
  if (statement == expected) return 0;
  std::cerr << "installed: '" << statement.toStdString() << "'\n";
  return 1;
}
