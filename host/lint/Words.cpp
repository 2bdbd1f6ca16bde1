#include "host/lint/Words.h"

#include <QString>
#include <algorithm>
#include <cstddef>

#include "base/Numbers.h"
#include "host/ValueForm.h"

namespace Corvane::Host::Lint {

namespace {

constexpr std::size_t kMostShown = 60;
constexpr std::size_t kLongestWord = 24;  ///< a longer one is no word that was misspelt

std::string UpperCase(std::string text) {
  for (char& letter : text) letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  return text;
}

/// How many letters have to be left out, added, changed or swapped with their neighbour.
std::size_t DistanceOf(const std::string& left, const std::string& right) {
  std::vector<std::vector<std::size_t>> steps(left.size() + 1, std::vector<std::size_t>(right.size() + 1));
  for (std::size_t i = 0; i <= left.size(); ++i) steps[i][0] = i;
  for (std::size_t j = 0; j <= right.size(); ++j) steps[0][j] = j;
  for (std::size_t i = 1; i <= left.size(); ++i) {
    for (std::size_t j = 1; j <= right.size(); ++j) {
      const std::size_t change = left[i - 1] == right[j - 1] ? 0 : 1;
      steps[i][j] = std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + change});
      const bool isSwapped = i > 1 && j > 1 && left[i - 1] == right[j - 2] && left[i - 2] == right[j - 1];
      if (isSwapped) steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
    }
  }
  return steps[left.size()][right.size()];
}

}  // namespace

std::string Shown(const std::string& value) {
  if (value.size() <= kMostShown) return "'" + value + "'";
  std::size_t end = kMostShown;
  // Not within a letter of several bytes.
  while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0U) == 0x80U) --end;
  return "'" + value.substr(0, end) + "...'";
}

std::string Shown(double amount) {
  return amount == static_cast<double>(TruncToInt32(amount)) ? FormatI(TruncToInt32(amount)) : FormatF2(amount);
}

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

bool IsAmong(const std::string& word, const WordList& words) {
  return std::any_of(words.begin(), words.end(), [&](Text known) { return word == known; });
}

std::string Meant(const std::string& word, const WordList& words) {
  const std::string upper = UpperCase(Trimmed(word));
  if (upper.size() > kLongestWord || upper.empty()) return {};
  std::string best;
  std::size_t least = upper.size() > 3 ? 3 : 2;
  for (const Text known : words) {
    const std::size_t distance = DistanceOf(upper, UpperCase(known));
    // A word of which nothing stays is another word.
    if (distance >= least || distance >= std::string(known).size()) continue;
    least = distance;
    best = known;
  }
  return best;
}

std::string MendWord(const std::string& word, const WordList& words) {
  const std::string meant = Meant(word, words);
  std::string all;
  for (std::size_t place = 0; place < words.size(); ++place) {
    if (place > 0) all += place + 1 == words.size() ? " or " : ", ";
    all += words[place];
  }
  return meant.empty() ? "write " + all : "did you mean " + meant + "? write " + all;
}

void CheckWord(Flaws& flaws, const Code& kind, const Place& place, const std::string& name, const std::string& word,
               const WordList& words, const std::string& isNone) {
  if (IsAmong(Trimmed(word), words)) return;
  flaws.Add(kind, place, name + " " + Shown(word) + " is " + isNone, MendWord(word, words));
}

void AddNoNumber(Flaws& flaws, const Place& place, const std::string& name, const std::string& value, qnc_code answer) {
  std::string withPoint = Trimmed(value);
  const bool hasOneComma = std::count(withPoint.begin(), withPoint.end(), ',') == 1;
  std::replace(withPoint.begin(), withPoint.end(), ',', '.');
  if (hasOneComma && Fits(QString::fromStdString(withPoint), ValueForm::kNumber)) {
    flaws.Add(Codes::kDecimalComma, place, name + " " + Shown(value) + " has a comma: it is not read as " + withPoint,
              "write " + withPoint, answer);
    return;
  }
  flaws.Add(Codes::kNotANumber, place, name + " " + Shown(value) + " is no number, and reads as another or as 0",
            "write a number, with a point as its decimal sign", answer);
}

}  // namespace Corvane::Host::Lint
