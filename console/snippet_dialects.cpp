// The languages of "kesp snippet": their literals and assignments.
#include <algorithm>
#include <cctype>
#include <string_view>
#include <type_traits>

#include "console/snippet_dialect.h"
#include "console/snippet_languages.h"
#include "console/utf8_character.h"

namespace kesp::console {
namespace {

std::vector<char32_t> CodesOf(std::string_view utf8) {
  std::vector<char32_t> codes;
  while (!utf8.empty()) {
    const Character character = CharacterAt(utf8);
    codes.push_back(character.length == 0 ? static_cast<unsigned char>(utf8[0]) : character.code);
    utf8.remove_prefix(std::max<std::size_t>(character.length, 1));
  }
  return codes;
}

// Of ASCII and with a look: in whichever encoding the program is saved, it is the same.
bool IsPlain(char32_t code) {
  return code >= ' ' && code < 0x7F;
}

bool IsPlain(const std::string& value) {
  return std::all_of(value.begin(), value.end(),
                     [](char each) { return IsPlain(static_cast<unsigned char>(each)); });
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
  for (const char32_t code : CodesOf(value)) {
    if (!text.empty()) text += between;
    text.append(before).append(std::to_string(code)).append(after);
  }
  return text;
}

// Chr takes codes of the system's code page, as the library does.
std::string BasicText(const std::string& value) {
  if (IsPlain(value)) return Quoted(value, '"', "\"\"");
  std::string text;
  for (const char32_t code : CodesOf(value)) {
    if (!text.empty()) text += " & ";
    text += (code < 0x100 ? "Chr(" : "ChrW(") + std::to_string(code) + ")";
  }
  return text;
}

std::string PowerShellText(const std::string& value) {
  return IsPlain(value) ? Quoted(value, '\'', "''") : "(" + ByCodes(value, "[string][char]", " + ", "") + ")";
}

std::string MatlabText(const std::string& value) {
  return IsPlain(value) ? Quoted(value, '\'', "''") : "char([" + ByCodes(value, "", " ", "") + "])";
}

// In quotation marks, with those characters by their codes that are not plain.
std::string EscapedText(const std::string& value, std::string (*by_code)(char32_t)) {
  std::string text = "\"";
  for (const char32_t code : CodesOf(value)) {
    if (code == '\r') {
      text += "\\r";
    } else if (code == '\n') {
      text += "\\n";
    } else if (!IsPlain(code)) {
      text += by_code(code);
    } else {
      if (code == '"' || code == '\\') text += '\\';
      text += static_cast<char>(code);
    }
  }
  return text + "\"";
}

// The last digits of the code, each of so many bits.
std::string Digits(char32_t code, int count, unsigned bits) {
  std::string text;
  for (int i = count - 1; i >= 0; --i) text += "0123456789abcdef"[code >> (i * bits) & ((1U << bits) - 1)];
  return text;
}

// As C#, Python and JScript have it.
std::string UnicodeText(const std::string& value) {
  return EscapedText(value, [](char32_t code) { return "\\u" + Digits(code, 4, 4); });
}

// Older compilers take no "\u0000", and a hexadecimal number would go on with the next letter.
std::string WideText(const std::string& value) {
  return "L" + EscapedText(value, [](char32_t code) {
           return code < 0x100 ? "\\" + Digits(code, 3, 3) : "\\u" + Digits(code, 4, 4);
         });
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
  if (assignment.property.starts_with(kSwitch)) {
    return "Check(SwitchOf(transport.p)->put_" + assignment.property.substr(kSwitch.size()) + "(" + value +
           "));";
  }
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

std::string CppArguments(const Dialect& dialect, const std::string& omega_address) {
  return "Text(" + dialect.text(kCommand) + ").bstr, Text(" + dialect.text(omega_address) + ").bstr, nullptr";
}

constexpr Dialect kDialects[] = {
    {"vbscript", AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"vba", AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"powershell", AssignAs<WithDollar>, "$true", "$false", "#", PowerShellText, FewArguments},
    {"python", AssignAs<Plain>, "True", "False", "#", UnicodeText, FewArguments},
    {"csharp", AssignAs<WithSemicolon>, "true", "false", "//", UnicodeText, FewArguments},
    {"cpp", CppAssign, "VARIANT_TRUE", "VARIANT_FALSE", "//", WideText, CppArguments},
    {"matlab", AssignAs<WithSemicolon>, "true", "false", "%", MatlabText, FewArguments},
    {"jscript", AssignAs<WithSemicolon>, "true", "false", "//", UnicodeText, FewArguments},
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
