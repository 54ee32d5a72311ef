// The languages of "kesp snippet": a program each, and its literals.
#include <algorithm>
#include <cctype>
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
  if (assignment.property == "SmartSwitch.SSPort")
    return "Ptr<_CKespSmartSwitch3> "
           "box;\nCheck(transport->get_SmartSwitch(&box.p));\nCheck(box->put_SSPort(" +
           value + "));";
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

constexpr char kVbscript[] = R"code(' Asks the instrument at @ADDRESS@ who it is.    cscript //nologo ask.vbs
Option Explicit
Dim comm, transport, reply
Set comm = CreateObject("KespCommObj.CKespCommObj")
@STYLE@
Set transport = comm.CommObject
@SETTINGS@
If comm.Query(reply, @ARGUMENTS@) Then
    WScript.Echo reply
Else
    WScript.Echo comm.CommErrorSource & ": " & comm.CommErrorDescr
    WScript.Quit 1
End If
)code";

constexpr char kVba[] =
    R"code(' Asks the instrument at @ADDRESS@ who it is. Paste it into a module and run Ask.
Option Explicit

Public Sub Ask()
    Dim comm As Object, transport As Object, reply As String
    Set comm = CreateObject("KespCommObj.CKespCommObj")
    @STYLE@
    Set transport = comm.CommObject
    @SETTINGS@
    If comm.Query(reply, @ARGUMENTS@) Then
        MsgBox reply
    Else
        MsgBox comm.CommErrorSource & ": " & comm.CommErrorDescr, vbExclamation
    End If
End Sub
)code";

constexpr char kPowershell[] =
    R"code(# Asks the instrument at @ADDRESS@ who it is.    powershell -File ask.ps1
$comm = New-Object -ComObject KespCommObj.CKespCommObj
@STYLE@
$transport = $comm.CommObject
@SETTINGS@
$reply = ""
if ($comm.Query([ref] $reply, @ARGUMENTS@)) {
    $reply
} else {
    "$($comm.CommErrorSource): $($comm.CommErrorDescr)"
    exit 1
}
)code";

constexpr char kPython[] =
    R"code(# Asks the instrument at @ADDRESS@ who it is.    pip install pywin32; python ask.py
import sys

from win32com.client import CastTo, gencache

comm = gencache.EnsureDispatch("KespCommObj.CKespCommObj")
@STYLE@
transport = CastTo(comm.CommObject, "_@TRANSPORT@")
@SETTINGS@
succeeded, reply = comm.Query("", @ARGUMENTS@)
if not succeeded:
    sys.exit(f"{comm.CommErrorSource}: {comm.CommErrorDescr}")
print(reply)
)code";

constexpr char kCsharp[] =
    R"code(// Asks the instrument at @ADDRESS@ who it is. Build it for x64 or x86, as the library that is installed.
using System;

static class Ask
{
    [STAThread]
    static int Main()
    {
        dynamic comm = Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj.CKespCommObj", true));
        @STYLE@
        dynamic transport = comm.CommObject;
        @SETTINGS@
        string reply = "";
        if (!comm.Query(ref reply, @ARGUMENTS@))
        {
            Console.Error.WriteLine(comm.CommErrorSource + ": " + comm.CommErrorDescr);
            return 1;
        }
        Console.WriteLine(reply);
        return 0;
    }
}
)code";

constexpr char kCpp[] =
    R"code(// Asks the instrument at @ADDRESS@ who it is. KespCommObj.h lies in include/ beside the library.
//   cl /EHsc ask.cpp ole32.lib oleaut32.lib          g++ ask.cpp -lole32 -loleaut32 -luuid
#include <KespCommObj.h>

#include <cstdio>
#include <cstdlib>

template <class Interface>
struct Ptr {
  Interface* p = nullptr;
  ~Ptr() { if (p != nullptr) p->Release(); }
  Interface* operator->() const { return p; }
};

struct Text {
  explicit Text(const wchar_t* text) : bstr(SysAllocString(text)) {}
  ~Text() { SysFreeString(bstr); }
  BSTR bstr;
};

void Check(HRESULT result) {
  if (SUCCEEDED(result)) return;
  std::fprintf(stderr, "error 0x%08lx\n", static_cast<unsigned long>(result));
  std::exit(2);
}

bool Ask() {
  Ptr<_CKespCommObj> comm;
  Check(CoCreateInstance(__uuidof(CKespCommObj), nullptr, CLSCTX_INPROC_SERVER, __uuidof(_CKespCommObj),
                         reinterpret_cast<void**>(&comm.p)));
  @STYLE@
  Ptr<IDispatch> any;
  Check(comm->get_CommObject(&any.p));
  Ptr<_@TRANSPORT@> transport;
  Check(any->QueryInterface(__uuidof(_@TRANSPORT@), reinterpret_cast<void**>(&transport.p)));
  @SETTINGS@
  Text reply(L""), source(L""), description(L"");
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  Check(comm->Query(&reply.bstr, @ARGUMENTS@, &succeeded));
  if (succeeded != VARIANT_FALSE) return std::printf("%ls\n", reply.bstr) > 0;
  Check(comm->get_CommErrorSource(&source.bstr));
  Check(comm->get_CommErrorDescr(&description.bstr));
  std::printf("%ls: %ls\n", source.bstr, description.bstr);
  return false;
}

int main() {
  Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  const bool succeeded = Ask();
  CoUninitialize();
  return succeeded ? 0 : 1;
}
)code";

constexpr char kMatlab[] = R"code(% Asks the instrument at @ADDRESS@ who it is.
comm = actxserver('KespCommObj.CKespCommObj');
@STYLE@
transport = comm.CommObject;
@SETTINGS@
[succeeded, reply] = comm.Query('', @ARGUMENTS@);
if succeeded
    disp(reply)
else
    error('%s: %s', comm.CommErrorSource, comm.CommErrorDescr)
end
)code";

// JScript cannot pass a variable by reference, so the reply is fetched by a function in VBScript.
constexpr char kJscript[] = R"code(<job>
<!-- Asks the instrument at @ADDRESS@ who it is. Save it as ask.wsf:    cscript //nologo ask.wsf -->
<script language="VBScript">
' JScript cannot pass a variable that gets the reply. Null tells that there was none.
Function Ask(comm, cmd, omegaAddress)
    Dim reply
    Ask = Null
    If comm.Query(reply, cmd, omegaAddress) Then Ask = reply
End Function
</script>
<script language="JScript">
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
@STYLE@
var transport = comm.CommObject;
@SETTINGS@
var reply = Ask(comm, @ARGUMENTS@);
if (reply === null) {
    WScript.Echo(comm.CommErrorSource + ": " + comm.CommErrorDescr);
    WScript.Quit(1);
}
WScript.Echo(reply);
</script>
</job>
)code";

constexpr Dialect kDialects[] = {
    {"vbscript", kVbscript, AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"vba", kVba, AssignAs<Plain>, "True", "False", "'", BasicText, FewArguments},
    {"powershell", kPowershell, AssignAs<WithDollar>, "$true", "$false", "#", PowerShellText, FewArguments},
    {"python", kPython, AssignAs<Plain>, "True", "False", "#", EscapedText, FewArguments},
    {"csharp", kCsharp, AssignAs<WithSemicolon>, "true", "false", "//", EscapedText, FewArguments},
    {"cpp", kCpp, CppAssign, "VARIANT_TRUE", "VARIANT_FALSE", "//", WideText, CppArguments},
    {"matlab", kMatlab, AssignAs<WithSemicolon>, "true", "false", "%", MatlabText, FewArguments},
    {"jscript", kJscript, AssignAs<WithSemicolon>, "true", "false", "//", EscapedText, AllArguments},
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
