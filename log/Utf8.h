#ifndef QNCORVANE_LOG_UTF8_H
#define QNCORVANE_LOG_UTF8_H

#include <string_view>

namespace Corvane {

/// Whether a text comes through Qt's conversion from UTF-8 and back byte for byte: it is well-formed, and no byte order
/// mark stands in front, which would be dropped. A NUL and a code point that is no character are well-formed; a
/// surrogate, an overlong sequence and one that is cut off are not.
bool ComesThroughUnchanged(std::string_view utf8);

}  // namespace Corvane

#endif
