#ifndef QNCORVANE_HOST_LINT_WORDS_H
#define QNCORVANE_HOST_LINT_WORDS_H

#include <string>
#include <vector>

#include "base/Text.h"
#include "host/lint/Flaws.h"

namespace Corvane::Host::Lint {

using WordList = std::vector<Text>;

/// A value as a finding shows it: in quotes, a long one cut.
std::string Shown(const std::string& value);

/// An amount as a finding shows it.
std::string Shown(double amount);

/// A text without the blanks around it.
std::string Trimmed(const std::string& text);

bool IsAmong(const std::string& word, const WordList& words);

/// @return the word of a list that was most likely meant: one that differs in letter case, or in one or two letters, left
///         out, added, changed or swapped; empty for none.
std::string Meant(const std::string& word, const WordList& words);

/// What to write in place of a word that is none of a list: the one that was meant, or all.
std::string MendWord(const std::string& word, const WordList& words);

/// Notes a word that is none of a list. One that is, but for blanks around it, is told as that elsewhere.
///
/// @param name   of the attribute or column.
/// @param isNone what the word is not: "no kind of price".
void CheckWord(Flaws& flaws, const Code& kind, const Place& place, const std::string& name, const std::string& word,
               const WordList& words, const std::string& isNone);

/// Notes a text that is no number where one is wanted: as a number with a comma, or as none.
void AddNoNumber(Flaws& flaws, const Place& place, const std::string& name, const std::string& value,
                 qnc_code answer = QNC_BAD_STORE);

}  // namespace Corvane::Host::Lint

#endif
