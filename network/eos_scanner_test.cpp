// Tests of the search for the end-of-string text.
#include "network/eos_scanner.h"

#include <gtest/gtest.h>

namespace kesp {
namespace {

struct ScanCase {
  const char* name;
  std::wstring eos;
  std::vector<std::string> pieces;
  std::string found;  // one letter per piece: y or n
};

class EosScannerTableTest : public testing::TestWithParam<ScanCase> {};

TEST_P(EosScannerTableTest, FoundIn_AfterEachPiece_AnswersForAllSoFar) {
  EosScanner scanner(GetParam().eos);
  std::string received;
  std::string found;
  for (const std::string& piece : GetParam().pieces) {
    received += piece;
    found += scanner.FoundIn(received) ? 'y' : 'n';
  }
  EXPECT_EQ(found, GetParam().found);
}

const ScanCase kScanCases[] = {
    {"Cr_InOnePiece", L"\r", {"ABC\r"}, "y"},
    {"Cr_InSecondPiece", L"\r", {"AB", "C\r"}, "ny"},
    {"Cr_NotLast", L"\r", {"A\rB", "C"}, "yy"},
    {"Cr_Missing", L"\r", {"", "A", "B\n"}, "nnn"},
    {"Nothing_Received", L"\r", {""}, "n"},
    {"CrLf_OverBorder", L"\r\n", {"AB\r", "\n"}, "ny"},
    {"CrLf_CrTwiceOverBorder", L"\r\n", {"\r", "\r", "\n"}, "nny"},
    {"CrLf_CrThenOther", L"\r\n", {"\r", "x", "\n", "\r\n"}, "nnny"},
    {"Long_ByteByByte", L"END", {"E", "N", "E", "N", "D"}, "nnnny"},
    {"SelfSimilar", L"aab", {"aa", "aa", "b"}, "nny"},
    {"SelfSimilar_Deep", L"abababc", {"ababab", "ababc"}, "ny"},
    {"Whole_IsPattern", L"aa", {"a", "a"}, "ny"},
    {"Empty_NeverMatches", L"", {"", "A\r"}, "nn"},
    {"NoByte_NeverMatches", L"\u4E2D", {"?", "\xE4\xB8\xAD"}, "nn"},
    {"NoByteAmongOthers_NeverMatches", L"\r\u4E2D", {"\r", "\r?"}, "nn"},
    {"HighByte", L"\u20AC", {"a", "\x80"}, "ny"},
    {"Nul", std::wstring(1, L'\0'), {"a", std::string(1, '\0')}, "ny"},
};

INSTANTIATE_TEST_SUITE_P(All, EosScannerTableTest, testing::ValuesIn(kScanCases),
                         [](const auto& param_info) { return std::string(param_info.param.name); });

// Every way of cutting a text in two answers as a plain search does.
TEST(EosScannerTest, FoundIn_EveryBorder_AgreesWithPlainSearch) {
  const std::string text = "abcabcababcabcabd\r\n\r\r\n";
  for (const std::wstring eos : {L"abcabd", L"\r\n", L"\r\r\n", L"d", L"ababcab", L"xx"}) {
    const std::string bytes(eos.begin(), eos.end());
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
      EosScanner scanner(eos);
      const std::string head = text.substr(0, cut);
      EXPECT_EQ(scanner.FoundIn(head), head.find(bytes) != std::string::npos);
      EXPECT_EQ(scanner.FoundIn(text), text.find(bytes) != std::string::npos);
    }
  }
}

TEST(EosScannerTest, Restart_LooksAtNewBytesOnlyAndForgetsHalfAMatch) {
  EosScanner scanner(L"\r\n");
  EXPECT_TRUE(scanner.FoundIn("A\r\n"));
  scanner.Restart();
  EXPECT_FALSE(scanner.FoundIn("B\r"));
  scanner.Restart();
  EXPECT_FALSE(scanner.FoundIn("\n"));
  EXPECT_TRUE(scanner.FoundIn("\n\r\n"));
}

TEST(EosScannerTest, LookFor_OtherText_SearchesFromTheFirstByte) {
  EosScanner scanner(L"\r");
  EXPECT_FALSE(scanner.FoundIn("A;B"));
  scanner.LookFor(L";");
  EXPECT_TRUE(scanner.FoundIn("A;B"));
  scanner.LookFor(L"\n");
  EXPECT_FALSE(scanner.FoundIn("A;B"));
}

TEST(EosScannerTest, FoundIn_FewerBytesThanBefore_StartsAnew) {
  EosScanner scanner(L"\r\n");
  EXPECT_FALSE(scanner.FoundIn("ABCD\r"));
  EXPECT_FALSE(scanner.FoundIn("\n"));
  EXPECT_TRUE(scanner.FoundIn("\n\r\n"));
}

// Bytes that were looked at are not looked at again: changing them afterwards changes nothing.
TEST(EosScannerTest, FoundIn_BytesAlreadySearched_AreNotReadAgain) {
  EosScanner scanner(L"\r");
  std::string received(1000, 'x');
  EXPECT_FALSE(scanner.FoundIn(received));
  received[500] = '\r';
  received += "y";
  EXPECT_FALSE(scanner.FoundIn(received));
  scanner.LookFor(L"\r");  // the same text: still not from the start
  EXPECT_FALSE(scanner.FoundIn(received));
  received += "\r";
  EXPECT_TRUE(scanner.FoundIn(received));
}

}  // namespace
}  // namespace kesp
