#ifndef QNCORVANE_HOST_EXPLANATIONTEXTS_H
#define QNCORVANE_HOST_EXPLANATIONTEXTS_H

namespace Corvane::Host {

/// The bytes of texts/explanations.json, and a zero behind them.
extern const char* const kExplanationTexts;

}  // namespace Corvane::Host

#endif
