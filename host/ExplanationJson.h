#ifndef QNCORVANE_HOST_EXPLANATIONJSON_H
#define QNCORVANE_HOST_EXPLANATIONJSON_H

#include <string>
#include <vector>

#include "engine/Explanation.h"
#include "host/JsonWriter.h"
#include "host/NearMiss.h"
#include "sale/ProSale.h"

namespace Corvane::Host {

/// What there is to tell of a calculation.
struct Explained {
  std::string Mode;
  Explanation Told;
  NearMisses Near;
};

/// Writes it as an object, in the form of docs/explanation.schema.json.
///
/// @param sale as the calculation left it.
void WriteExplanation(JsonWriter& json, const Explained& explained, const ProSale& sale);

}  // namespace Corvane::Host

#endif
