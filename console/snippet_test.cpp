// Programs for an address.
#include "console/snippet.h"

#include <gmock/gmock.h>

#include "console/snippet_languages.h"
#include "console/usage_error.h"

namespace kesp::console {
namespace {

using testing::HasSubstr;

std::string SnippetFor(const std::string& language, const std::string& address) {
  return Snippet(language, ParseAddress(address), address);
}

TEST(SnippetTest, Vbscript_IsAWholeProgram) {
  EXPECT_EQ(SnippetFor("vbscript", "tcp:192.168.0.10"),
            R"code(' Asks the instrument at tcp:192.168.0.10 who it is.    cscript //nologo ask.vbs
' C:\Windows\System32\cscript.exe uses the 64-bit library, C:\Windows\SysWOW64\cscript.exe the 32-bit one.
Option Explicit
Dim comm, transport, reply
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = 1  ' csTCPIP
Set transport = comm.CommObject
transport.IPAddress = "192.168.0.10"
transport.Port = 10001
If comm.Query(reply, "*IDN?") Then
    WScript.Echo reply
Else
    WScript.Echo comm.CommErrorSource & ": " & comm.CommErrorDescr
    WScript.Quit 1
End If
)code");
}

// The settings in each language, and the call that needs the controller's address.
TEST(SnippetTest, Languages_SetTheSameInTheirOwnWords) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"vbscript",
       {"\ntransport.BaudRate = 6  ' br9600\n", "\ntransport.UseRedirector = True\n",
        "(reply, \"*IDN?\", \"01\")"}},
      {"vba", {"\n    transport.BaudRate = 6  ' br9600\n", "\n    transport.UseRedirector = True\n"}},
      {"powershell",
       {"\n$transport.BaudRate = 6  # br9600\n", "\n$transport.UseRedirector = $true\n", "'*IDN?', '01')"}},
      {"python",
       {"\ntransport.BaudRate = 6  # br9600\n", "\ntransport.UseRedirector = True\n", "\"_CKespCOMPort3\""}},
      {"csharp",
       {"\n        transport.BaudRate = 6;  // br9600\n", "\n        transport.UseRedirector = true;\n"}},
      {"cpp",
       {"\n  Check(transport->put_BaudRate(br9600));\n", "Check(transport->put_UseRedirector(VARIANT_TRUE));",
        "auto parity = PARITY_EVEN;", "Text(L\"01\").bstr, nullptr, &succeeded)",
        "Ptr<_CKespCOMPort3> transport"}},
      {"matlab", {"\ntransport.BaudRate = 6;  % br9600\n", "\ntransport.UseRedirector = true;\n"}},
      {"jscript", {"\ntransport.BaudRate = 6;  // br9600\n", "comm.Query(reply, \"*IDN?\", \"01\")"}},
  };
  std::vector<std::string> tried;
  for (const auto& [language, lines] : cases) {
    const std::string program = SnippetFor(language, "com3@9600,7E1,omega=01,cr");
    for (const std::string& line : lines) EXPECT_THAT(program, HasSubstr(line)) << language;
    EXPECT_THAT(program, HasSubstr("com3@9600,7E1,omega=01,cr who it is"));
    EXPECT_EQ(program.find('@', program.find("who it is")), std::string::npos) << program;
    tried.emplace_back(language);
  }
  EXPECT_EQ(tried, SnippetLanguages());
}

TEST(SnippetTest, CharactersWithoutALook_AreWrittenByTheirCodes) {
  const std::pair<const char*, std::string> cases[] = {
      {"vbscript", "EOSChar = Chr(13) & Chr(10)\n"},
      {"powershell", "EOSChar = ([string][char]13 + [string][char]10)\n"},
      {"matlab", "EOSChar = char([13 10]);\n"},
      {"python", "EOSChar = \"\\r\\n\"\n"},
      {"cpp", "put_EOSChar(Text(L\"\\r\\n\").bstr)"},
  };
  for (const auto& [language, line] : cases)
    EXPECT_THAT(SnippetFor(language, "tcp:host,eos=13+10"), HasSubstr(line)) << language;
}

TEST(SnippetTest, CharactersPastAscii_AreWrittenByTheirCodes_WhateverTheFilesEncoding) {
  const std::pair<const char*, std::string> cases[] = {
      {"vba", "EOSChar = Chr(127) & Chr(200)\n"},
      {"powershell", "EOSChar = ([string][char]127 + [string][char]200)\n"},
      {"matlab", "EOSChar = char([127 200]);\n"},
      {"csharp", "EOSChar = \"\\u007f\\u00c8\";\n"},
      {"cpp", "put_EOSChar(Text(L\"\\177\\310\").bstr)"},
  };
  for (const auto& [language, line] : cases)
    EXPECT_THAT(SnippetFor(language, "tcp:host,eos=127+200"), HasSubstr(line)) << language;
  EXPECT_THAT(SnippetFor("vbscript", "tcp:\xC4\xB1"), HasSubstr("IPAddress = ChrW(305)\n"));
  EXPECT_THAT(SnippetFor("cpp", "tcp:host,eos=0"), HasSubstr("put_EOSChar(Text(L\"\\000\").bstr)"));
}

TEST(SnippetTest, Cpp_KeepsOneReferenceAndTheWholeText) {
  const std::string program = SnippetFor("cpp", "com3,switch=B");
  EXPECT_THAT(program, HasSubstr("Ptr(const Ptr&) = delete;"));
  EXPECT_THAT(program, HasSubstr("SysAllocStringLen(text, size - 1)"));
  EXPECT_THAT(program, HasSubstr("std::setlocale(LC_ALL, \"\");"));
}

TEST(SnippetTest, Vba_CanBePastedBehindOptionExplicit) {
  EXPECT_EQ(SnippetFor("vba", "com3").find("Option Explicit"), std::string::npos);
}

TEST(SnippetTest, Gpib_EndsCommandsAndLeavesTheEndOfReplies) {
  const std::string program = SnippetFor("vbscript", "gpib:5/3,noclear");
  EXPECT_THAT(program, HasSubstr("comm.CommStyle = 2  ' csIEEE\n"));
  EXPECT_THAT(
      program,
      HasSubstr("transport.PrimaryAddress = 5\ntransport.SecondaryAddress = 3\n"
                "transport.EOSChar = \"10\"\ntransport.SetEOS = False\ntransport.ClearDevice = False\n"));
}

TEST(SnippetTest, PortSwitch_HasItsSizeAndPort) {
  EXPECT_THAT(SnippetFor("vbscript", "com3,switch=B/8"),
              HasSubstr("transport.UseSmartSwitch = True\ntransport.SmartSwitch.Style = 1  ' ssBB8port\n"
                        "transport.SmartSwitch.SSPort = \"B\"\n"));
  EXPECT_THAT(SnippetFor("cpp", "com3,switch=B"),
              HasSubstr("Check(SwitchOf(transport.p)->put_Style(ssBB6port));"));
}

TEST(SnippetTest, ADeviceWithoutNumber_IsRefused) {
  EXPECT_THROW(SnippetFor("vbscript", "gpib:"), UsageError);
}

}  // namespace
}  // namespace kesp::console
