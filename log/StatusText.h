#ifndef QNCORVANE_LOG_STATUSTEXT_H
#define QNCORVANE_LOG_STATUSTEXT_H

#include "base/Text.h"

namespace Corvane {

/// Places in the table of status texts. Hosts compare the texts: their spelling is the interface.
enum class Status {
  Success = 0,
  UnknownError = 1,
  Free = 2,
  Initializing = 3,
  Cleaning = 4,
  Using = 5,
  InitializeFailed = 6,
  ClearFailed = 7,
  InvalidValue = 8,
  ClearSaleFailed = 9,
  WriteFailed = 10,
  TotalOverflow = 18,
  NumberOverflow = 19,
};

/// @return a constant text.
Text StatusText(Status status);

/// What a calculation answers where no row of the table fits.
namespace AnswerText {
constexpr Text kNoKey = "销售单主键为空！";
constexpr Text kNoMode = "计算方式为空！";
constexpr Text kNoSale = "销售单为空！";
constexpr Text kNoRules = "促销模型为空";
}  // namespace AnswerText

}  // namespace Corvane

#endif
