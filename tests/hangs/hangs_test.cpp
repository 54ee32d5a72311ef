// Some cells of the matrix without their times, and whether it has every member that can block.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <set>

#include "tests/hangs/does_not_block.h"
#include "tests/hangs/pairs.h"
#include "tests/hangs/trial.h"

namespace kesp::hangs {
namespace {

using clients::ComPtr;
using clients::Text;

Cells AllCells() {
  Cells all;
  for (const Cells& cells : {TcpCells(), DiscoveryCells(), SerialCells(), GpibCells()}) {
    all.insert(all.end(), cells.begin(), cells.end());
  }
  return all;
}

// "CKespTCP.ReadLine", without what else a cell says of its member.
std::set<std::string> MembersOfMatrix() {
  std::set<std::string> members;
  for (const Cell& cell : AllCells()) members.insert(cell.member.substr(0, cell.member.find(',')));
  return members;
}

std::string NameOf(ITypeInfo* info, MEMBERID member) {
  Text name;
  EXPECT_EQ(info->GetDocumentation(member, name.out(), nullptr, nullptr, nullptr), S_OK);
  return BytesOfText(name.str());
}

// Adds the methods of an interface, those of IDispatch and properties aside: a property only stores or
// returns.
void AddMethods(ITypeInfo* info, std::set<std::string>& methods) {
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
  const std::string name = NameOf(info, MEMBERID_NIL);
  const bool is_class_interface = attributes->typekind == TKIND_DISPATCH && name.starts_with("_C");
  for (UINT i = 0; is_class_interface && i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    if (FAILED(info->GetFuncDesc(i, &function))) continue;
    const bool is_own =
        (function->wFuncFlags & FUNCFLAG_FRESTRICTED) == 0 && function->invkind == INVOKE_FUNC;
    if (is_own) methods.insert(name.substr(1) + "." + NameOf(info, function->memid));
    info->ReleaseFuncDesc(function);
  }
  info->ReleaseTypeAttr(attributes);
}

std::set<std::string> PublicMethods() {
  ComPtr<ITypeLib> library;
  EXPECT_EQ(LoadRegTypeLib(LIBID_KespCommObj, 1, 0, 0, library.GetAddressOf()), S_OK);
  std::set<std::string> methods;
  for (UINT i = 0; library != nullptr && i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    if (SUCCEEDED(library->GetTypeInfo(i, info.GetAddressOf()))) AddMethods(info.Get(), methods);
  }
  return methods;
}

TEST(HangsTest, EveryMethodIsInTheMatrix_OrSaidNotToBlock) {
  const std::set<std::string> methods = PublicMethods();
  const std::set<std::string> members = MembersOfMatrix();
  EXPECT_GT(methods.size(), 30U);
  for (const std::string& method : methods) {
    EXPECT_NE(members.contains(method), kDoesNotBlock.contains(method))
        << method << " is in neither, or in both";
  }
  for (const auto& [method, reason] : kDoesNotBlock) EXPECT_TRUE(methods.contains(method)) << method;
  for (const std::string& member : members) {
    const bool is_known = methods.contains(member) || member.starts_with("release of ") ||
                          // The one property that closes a port.
                          member == "CKespCommObj.CommStyle";
    EXPECT_TRUE(is_known) << member << " is no method";
  }
}

// Whether a member has a cell of that way, with whatever settings.
bool HasCell(const Cells& cells, const std::string& transport, const std::string& member,
             const std::string& way) {
  return std::any_of(cells.begin(), cells.end(), [&](const Cell& cell) {
    return cell.transport == transport && cell.member.substr(0, cell.member.find(',')) == member &&
           cell.way.find(way) != std::string::npos;
  });
}

TEST(HangsTest, EveryMemberHasEveryWay_OrAReasonWhyItMakesNoSense) {
  const Cells cells = AllCells();
  std::set<std::string> members = PublicMethods();
  for (const auto& [method, reason] : kDoesNotBlock) members.erase(method);
  members.insert("CKespCommObj.CommStyle");
  std::set<std::string> used;
  for (const auto& [transport, own_class, ways] : kWays) {
    for (const std::string& member : members) {
      if (!member.starts_with(own_class) && !member.starts_with("CKespCommObj")) continue;
      for (const std::string& way : ways) {
        const std::string name = transport + ": " + member + " (" + way + ")";
        int reasons = 0;
        for (const auto& [pairs, reason] : kMakesNoSense) {
          if (!std::regex_search(name, std::regex(pairs))) continue;
          used.insert(pairs);
          ++reasons;
        }
        EXPECT_EQ(reasons, HasCell(cells, transport, member, way) ? 0 : 1) << name;
      }
    }
  }
  for (const auto& [pairs, reason] : kMakesNoSense) EXPECT_TRUE(used.contains(pairs)) << pairs;
}

class HangsCellTest : public testing::TestWithParam<const char*> {
 protected:
  clients::Apartment apartment_;
};

TEST_P(HangsCellTest, ComesBackWithTheRightResult_AndWorksAgain) {
  const Cells cells = AllCells();
  const auto cell = std::find_if(cells.begin(), cells.end(),
                                 [](const Cell& candidate) { return candidate.Name() == GetParam(); });
  ASSERT_NE(cell, cells.end());
  Trial trial(*cell);
  Play(trial, *cell);
  EXPECT_EQ(trial.failures(), std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(
    Some, HangsCellTest,
    testing::Values(
        "TCP: CKespTCP.WriteLine (peer that never reads)",
        "TCP: CKespTCP.ReadLine (reset in place of a reply)",
        "TCP: CKespCommObj.Query (garbage before the reply)",
        "serial: CKespCOMPort3.ReadLine, raw (half a reply, then silence)",
        "serial: CKespCOMPort3.WriteLine (line that takes nothing, ended by ClosePort in a handler)",
        "serial: CKespCOMPort3.OpenPort, with a switch (line held up)",
        "serial: CKespCommObj.Query (stale bytes before the command)",
        "GPIB: CKespIEEE.WriteLine (driver that does not return from ibwrt, without a limit)",
        "GPIB: CKespCommObj.Query (late reply)"));

}  // namespace
}  // namespace kesp::hangs
