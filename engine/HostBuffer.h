#ifndef QNCORVANE_ENGINE_HOSTBUFFER_H
#define QNCORVANE_ENGINE_HOSTBUFFER_H

#include <initializer_list>
#include <string_view>

namespace Corvane {

/// Copies a text with its closing zero into a host's buffer, whose length nobody checks. A null buffer is left alone.
void CopyText(char* buffer, std::string_view text);

/// The same with several texts, one directly behind the other.
void CopyTexts(char* buffer, std::initializer_list<std::string_view> texts);

}  // namespace Corvane

#endif
