// The languages of "kesp snippet": their literals and assignments.
#include <algorithm>
#include <cctype>
#include <string_view>
#include <type_traits>

#include "console/snippet_dialect.h"
#include "console/snippet_languages.h"

namespace kesp::console {
namespace {

bool IsPlain(const std::string& value) {
  return std::all_of(value.begin(), value.end(),
                     [](char each) { return static_cast<unsigned char>(each) >= ' '; });
}

// "abc", with a quotation mark inside written as `escaped`.
std::string Quoted(const std::string& value, char mark, const std::string& escaped) {
  std::string text(1, mark);
  for (const char each : value) text += each == mark ? escaped : std::string(1, each);
  return text + mark;
}

// Each character by its code, joined.
std::string ByCodes(const std::string& value, const std::string& before, const std::string& between,
                    const std::string& after) {
  std::string text;
  for (const char each : value) {
    if (!text.empty()) text += between;
    text += before + std::to_string(static_cast<unsigned char>(each)) + after;
  }
  return text;
}

std::string BasicText(const std::string& value) {
  return IsPlain(value) ? Quoted(value, '"', "\"\"") : ByCodes(value, "Chr(", " & ", ")");
}

std::string PowerShellText(const std::string& value) {
  return IsPlain(value) ? Quoted(value, '\'', "''") : "(" + ByCodes(value, "[string][char]", " + ", "") + ")";
}

std::string MatlabText(const std::string& value) {
  return IsPlain(value) ? Quoted(value, '\'', "''") : "char([" + ByCodes(value, "", " ", "") + "])";
}

// As C, C#, Python and JScript have it.
std::string EscapedText(const std::string& value) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "\"";
  for (const char each : value) {
    const auto code = static_cast<unsigned char>(each);
    if (each == '"' || each == '\\') text += '\\';
    if (each == '\r') {
      text += "\\r";
    } else if (each == '\n') {
      text += "\\n";
    } else if (code < ' ') {
      text += std::string("\\u00") + kDigits[code / 16] + kDigits[code % 16];
    } else {
      text += each;
    }
  }
  return text + "\"";
}

std::string WideText(const std::string& value) {
  return "L" + EscapedText(value);
}

// The value, and as a comment what it means.
struct Literal {
  std::string value;
  std::string comment;
};

Literal LiteralOf(const Dialect& dialect, const Assignment& assignment) {
  return std::visit(
      [&dialect](const auto& value) -> Literal {
        using Type = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, bool>) {
          return {value ? dialect.true_word : dialect.false_word, ""};
        } else if constexpr (std::is_same_v<Type, int>) {
          return {std::to_string(value), ""};
        } else if constexpr (std::is_same_v<Type, Enumerator>) {
          return {std::to_string(value.value), value.name};
        } else {
          return {dialect.text(value), ""};
        }
      },
      assignment.value);
}

// "transport.Port = 3", with what a language puts around it.
template <class Formatting>
std::string AssignAs(const Dialect& dialect, const Assignment& assignment) {
  const Literal literal = LiteralOf(dialect, assignment);
  std::string line = assignment.property == "CommStyle" ? Formatting::kComm : Formatting::kTransport;
  line += "." + assignment.property + " = " + literal.value + Formatting::kEnd;
  if (!literal.comment.empty()) line += std::string("  ") + dialect.comment + " " + literal.comment;
  return line;
}

struct Plain {
  static constexpr char kComm[] = "comm";
  static constexpr char kTransport[] = "transport";
  static constexpr char kEnd[] = "";
};

struct WithSemicolon : Plain {
  static constexpr char kEnd[] = ";";
};

struct WithDollar {
  static constexpr char kComm[] = "$comm";
  static constexpr char kTransport[] = "$transport";
  static constexpr char kEnd[] = "";
};

std::string CppValue(const Dialect& dialect, const Assignment& assignment) {
  if (const auto* enumerator = std::get_if<Enumerator>(&assignment.value)) return enumerator->name;
  const std::string literal = LiteralOf(dialect, assignment).value;
  return std::holds_alternative<std::string>(assignment.value) ? "Text(" + literal + ").bstr" : literal;
}

// What is put by reference needs a variable.
std::string CppAssign(const Dialect& dialect, const Assignment& assignment) {
  const std::string value = CppValue(dialect, assignment);
  constexpr std::string_view kSwitch = "SmartSwitch.";
  if (assignment.property.starts_with(kSwitch))
    return "Check(SwitchOf(transport.p)->put_" + assignment.property.substr(kSwitch.size()) + "(" + value +
           "));";
  const std::string object = assignment.property == "CommStyle" ? "comm" : "transport";
  if (!assignment.by_reference)
    return "Check(" + object + "->put_" + assignment.property + "(" + value + "));";
  std::string name = assignment.property;
  name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
  return "auto " + name + " = " + value + "; Check(" + object + "->put_" + assignment.property + "(&" + name +
         "));";
}

constexpr char kCommand[] = "*IDN?";

std::string FewArguments(const Dialect& dialect, const std::string& omega_address) {
  return dialect.text(kCommand) + (omega_address.empty() ? "" : ", " + dialect.text(omega_address));
}

std::string AllArguments(const Dialect& dialect, const std::string& omega_address) {
  return dialect.text(kCommand) + ", " + dialect.text(omega_address);
}

std::string CppArguments(const Dialect& dialect, const std::string& omega_address) {
  return "Text(" + dialect.text(kCommand) + ").bstr, Text(" + dialect.text(omega_address) + ").bstr, nullptr";
}

constexpr Dialect kDialects[] = {
    {"vbscript", AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"vba", AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"powershell", AssignAs<WithDollar>, "$true", "$false", "#", PowerShellText, FewArguments},
    {"python", AssignAs<Plain>, "True", "False", "#", EscapedText, FewArguments},
    {"csharp", AssignAs<WithSemicolon>, "true", "false", "//", EscapedText, FewArguments},
    {"cpp", CppAssign, "VARIANT_TRUE", "VARIANT_FALSE", "//", WideText, CppArguments},
    {"matlab", AssignAs<WithSemicolon>, "true", "false", "%", MatlabText, FewArguments},
    {"jscript", AssignAs<WithSemicolon>, "true", "false", "//", EscapedText, AllArguments},
};

}  // namespace

const Dialect* FindDialect(const std::string& name) {
  const auto* found = std::find_if(std::begin(kDialects), std::end(kDialects),
                                   [&name](const Dialect& each) { return name == each.name; });
  return found == std::end(kDialects) ? nullptr : found;
}

const std::vector<std::string>& SnippetLanguages() {
  static const std::vector<std::string> languages = [] {
    std::vector<std::string> names;
    for (const Dialect& dialect : kDialects) names.emplace_back(dialect.name);
    return names;
  }();
  return languages;
}

}  // namespace kesp::console
