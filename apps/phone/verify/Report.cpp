#include "phone/verify/Report.h"

#include <cstdio>
#include <string_view>

namespace phone::verify {

namespace {

constexpr char style[] = R"(
:root{color-scheme:light dark;--ok:#1a7f4b;--bad:#c2263a;--none:#8a8f98;--open:#b8741a;--line:#8883;--soft:#8881}
body{font:15px/1.5 system-ui,sans-serif;max-width:62rem;margin:2.5rem auto;padding:0 1.2rem}
h1{font-size:1.5rem;margin:0}p.sub{color:var(--none);white-space:pre-line;margin:.2rem 0 1.6rem}
.bar{display:flex;height:.7rem;border-radius:.35rem;overflow:hidden;margin:0 0 1.6rem;background:var(--soft)}
.bar i{display:block}.bar .passed{background:var(--ok)}.bar .failed{background:var(--bad)}.bar .skipped{background:var(--none)}.bar .notrun{background:var(--open)}
h2{font-size:1.05rem;margin:1.8rem 0 .3rem}table{border-collapse:collapse;width:100%}
td{padding:.3rem .6rem .3rem 0;border-bottom:1px solid var(--line);vertical-align:top}
td.name{white-space:nowrap;font-family:ui-monospace,monospace;font-size:.86rem}td.time{text-align:right;color:var(--none);white-space:nowrap}
td.mark{width:6rem;font-weight:600}.passed td.mark{color:var(--ok)}.failed td.mark{color:var(--bad)}.skipped td.mark{color:var(--none)}.notrun td.mark{color:var(--open)}
dl{display:grid;grid-template-columns:auto 1fr;gap:0 .8rem;margin:.3rem 0;font-size:.9rem}dt{color:var(--none)}dd{margin:0;overflow-wrap:anywhere}
)";

std::string escaped(std::string_view text) {
  std::string safe;
  for (const char letter : text) {
    switch (letter) {
      case '&': safe += "&amp;"; break;
      case '<': safe += "&lt;"; break;
      case '>': safe += "&gt;"; break;
      case '"': safe += "&quot;"; break;
      default: safe += static_cast<unsigned char>(letter) < 0x20 && letter != '\n' ? ' ' : letter;
    }
  }
  return safe;
}

std::string seconds(Micros time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", static_cast<double>(time) / 1e6);
  return text;
}

std::string groupOf(const Result& result) { return result.name.substr(0, result.name.find('.')); }

const char* nameOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::passed: return "passed";
    case Outcome::failed: return "failed";
    case Outcome::skipped: return "skipped";
    case Outcome::notRun: return "notrun";
  }
  return "";
}

const char* markOf(Outcome outcome) {
  switch (outcome) {
    case Outcome::passed: return "passed";
    case Outcome::failed: return "FAILED";
    case Outcome::skipped: return "not offered";
    case Outcome::notRun: return "not run";
  }
  return "";
}

Micros timeOf(const Run& run) {
  Micros time = 0;
  for (const Result& result : run.results) time += result.took;
  return time;
}

std::string barPiece(const Run& run, Outcome outcome) {
  return std::string("<i class=\"") + nameOf(outcome) +
         "\" style=\"flex:" + std::to_string(run.count(outcome)) + "\"></i>";
}

std::string details(const Result& result) {
  if (result.outcome == Outcome::passed) return "";
  if (result.outcome != Outcome::failed)
    return std::string("<dl><dt>") + markOf(result.outcome) + "</dt><dd>" + escaped(result.expected) +
           "</dd></dl>";
  return "<dl><dt>expected</dt><dd>" + escaped(result.expected) + "</dd><dt>came</dt><dd>" +
         escaped(result.came) + "</dd></dl>";
}

std::string htmlRow(const Result& result) {
  return std::string("<tr class=\"") + nameOf(result.outcome) + "\"><td class=\"name\">" +
         escaped(result.name) + "</td><td>" + escaped(result.meaning) + details(result) +
         "</td><td class=\"mark\">" + markOf(result.outcome) + "</td><td class=\"time\">" +
         seconds(result.took) + " s</td></tr>\n";
}

}  // namespace

std::string tableLine(const Result& result, bool coloured) {
  const char* colour = result.outcome == Outcome::passed   ? "\x1b[32m"
                       : result.outcome == Outcome::failed ? "\x1b[31m"
                       : result.outcome == Outcome::notRun ? "\x1b[33m"
                                                           : "\x1b[90m";
  char line[96];
  std::snprintf(line, sizeof line, "%-11s", markOf(result.outcome));
  std::string text = coloured ? std::string(colour) + line + "\x1b[0m" : std::string(line);
  std::snprintf(line, sizeof line, "  %-28s %7s s  ", result.name.c_str(), seconds(result.took).c_str());
  text += line;
  if (result.outcome != Outcome::passed && result.outcome != Outcome::failed) return text + result.expected;
  text += result.meaning;
  if (result.outcome == Outcome::failed) {
    text += "\n             expected  " + result.expected + "\n             came      " + result.came;
  }
  return text;
}

std::string summary(const Run& run) {
  const std::string counts = std::to_string(run.count(Outcome::passed)) + " passed, " +
                             std::to_string(run.count(Outcome::failed)) + " failed, " +
                             std::to_string(run.count(Outcome::skipped)) + " not offered, ";
  const std::string time = "in " + seconds(timeOf(run)) + " s";
  if (run.brokenOff.empty()) return counts + time;
  return counts + std::to_string(run.count(Outcome::notRun)) + " not run, " + time +
         "\nThe run was broken off: " + run.brokenOff + ".";
}

std::string junitXml(const Run& run, const std::string& title) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n<testsuite name=\"" +
                    escaped(title) + "\" tests=\"" + std::to_string(run.results.size()) + "\" failures=\"" +
                    std::to_string(run.count(Outcome::failed)) + "\" errors=\"0\" skipped=\"" +
                    std::to_string(run.count(Outcome::skipped) + run.count(Outcome::notRun)) + "\" time=\"" +
                    seconds(timeOf(run)) + "\">\n";
  for (const Result& result : run.results) {
    xml += "<testcase classname=\"" + escaped(groupOf(result)) + "\" name=\"" + escaped(result.name) +
           "\" time=\"" + seconds(result.took) + "\">";
    if (result.outcome == Outcome::skipped || result.outcome == Outcome::notRun) {
      xml += std::string("<skipped message=\"") + markOf(result.outcome) + ": " + escaped(result.expected) +
             "\"/>";
    }
    if (result.outcome == Outcome::failed) {
      xml += "<failure message=\"" + escaped(result.meaning) + "\">expected: " + escaped(result.expected) +
             "\ncame: " + escaped(result.came) + "</failure>";
    }
    xml += "</testcase>\n";
  }
  return xml + "</testsuite>\n</testsuites>\n";
}

std::string htmlPage(const Run& run, const std::string& title) {
  std::string page =
      "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
      "<meta name=\"viewport\" content=\"width=device-width\"><title>Conformance of " +
      escaped(title) + "</title><style>" + style + "</style></head><body>\n<h1>What a phone sees of " +
      escaped(title) + "</h1>\n<p class=\"sub\">" + escaped(summary(run)) + "</p>\n<div class=\"bar\">" +
      barPiece(run, Outcome::passed) + barPiece(run, Outcome::failed) + barPiece(run, Outcome::skipped) +
      barPiece(run, Outcome::notRun) + "</div>\n";
  std::string group;
  for (const Result& result : run.results) {
    if (groupOf(result) != group) {
      page += group.empty() ? "" : "</table>\n";
      group = groupOf(result);
      page += "<h2>" + escaped(group) + "</h2>\n<table>\n";
    }
    page += htmlRow(result);
  }
  return page + (group.empty() ? "" : "</table>\n") + "</body></html>\n";
}

}  // namespace phone::verify
