#include "host/lint/Flaws.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <utility>

#include "host/JsonWriter.h"

namespace Corvane::Host::Lint {

std::string Flaw::Text() const {
  const std::string file = Where.Line > 0 ? Where.File + ":" + std::to_string(Where.Line) : Where.File;
  const std::string row = Where.Key.empty() ? Where.Table : Where.Table + " " + Where.Key;
  return (Where.File.empty() ? row : file) + ": " + What + "; " + Mend;
}

void Flaws::Add(const Code& kind, Place place, std::string what, std::string mend, qnc_code answer) {
  m_flaws.push_back({kind, std::move(place), std::move(what), std::move(mend), answer});
}

void Flaws::Append(Flaws&& others) {
  m_flaws.insert(m_flaws.end(), std::make_move_iterator(others.m_flaws.begin()),
                 std::make_move_iterator(others.m_flaws.end()));
}

const Flaw* Flaws::FirstError() const {
  const auto found = std::find_if(m_flaws.begin(), m_flaws.end(), [](const Flaw& flaw) { return flaw.IsError(); });
  return found == m_flaws.end() ? nullptr : &*found;
}

Flaw* Flaws::ErrorAt(const std::string& file, int line) {
  const auto found = std::find_if(m_flaws.begin(), m_flaws.end(), [&](const Flaw& flaw) {
    return flaw.IsError() && flaw.Where.File == file && flaw.Where.Line == line;
  });
  return found == m_flaws.end() ? nullptr : &*found;
}

bool Flaws::Has(const Code& kind, const std::string& file) const {
  return std::any_of(m_flaws.begin(), m_flaws.end(), [&](const Flaw& flaw) {
    return flaw.Where.File == file && std::strcmp(flaw.Kind.Name, kind.Name) == 0;
  });
}

std::string Flaws::Report(const std::string& folder) const {
  const auto errors = std::count_if(m_flaws.begin(), m_flaws.end(), [](const Flaw& flaw) { return flaw.IsError(); });
  JsonWriter json;
  json.Object();
  json.Key("folder").String(folder);
  json.Key("errors").Integer(errors);
  json.Key("warnings").Integer(static_cast<std::int64_t>(m_flaws.size()) - errors);
  json.Key("findings").Array();
  for (const Flaw& flaw : m_flaws) {
    json.Object();
    json.Key("severity").String(flaw.IsError() ? "error" : "warning");
    json.Key("code").String(flaw.Kind.Name);
    json.Key("file").String(flaw.Where.File);
    json.Key("line").Integer(flaw.Where.Line);
    json.Key("table").String(flaw.Where.Table);
    json.Key("key").String(flaw.Where.Key);
    json.Key("billNo").String(flaw.Where.BillNo);
    json.Key("what").String(flaw.What);
    json.Key("mend").String(flaw.Mend);
    json.End();
  }
  json.End();
  json.End();
  return json.Take();
}

}  // namespace Corvane::Host::Lint
