// The words of the command line in a script.
#include "console/completion_script.h"

namespace kesp::console {
namespace {

constexpr char kHead[] =
    "# Completion of kesp for PowerShell: put it into $PROFILE, or run\n"
    "#   kesp completion powershell | Out-String | Invoke-Expression\n"
    "Register-ArgumentCompleter -Native -CommandName kesp, kesp.exe -ScriptBlock {\n"
    "  param($wordToComplete, $commandAst, $cursorPosition)\n"
    "  $commands = [ordered]@{\n";

// The word that is being typed is not among those before it. Ports are asked for where an address begins so.
constexpr char kTail[] =
    "  }\n"
    "  $before = @($commandAst.CommandElements | Select-Object -Skip 1 |\n"
    "    Where-Object { $_.Extent.EndOffset -lt $cursorPosition } | ForEach-Object { $_.ToString() })\n"
    "  $command = $before | Where-Object { $commands.Contains($_) } | Select-Object -First 1\n"
    "  if (-not $command) { $words = @($commands.Keys) + '--help', '--registered', '--version' }\n"
    "  elseif ($wordToComplete.StartsWith('-')) { $words = $commands[$command].Options }\n"
    "  elseif ($commands[$command].Values) { $words = $commands[$command].Values }\n"
    "  elseif ($wordToComplete -like 'com*') {\n"
    "    $words = [IO.Ports.SerialPort]::GetPortNames() | ForEach-Object { $_.ToLower() } | Sort-Object "
    "-Unique\n"
    "  }\n"
    "  $words | Where-Object { $_ -like \"$wordToComplete*\" } | ForEach-Object {\n"
    "    [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)\n"
    "  }\n"
    "}\n";

std::string ListOf(const std::vector<std::string>& words) {
  std::string list;
  for (const std::string& word : words) list += (list.empty() ? "'" : ", '") + word + "'";
  return "@(" + list + ")";
}

}  // namespace

std::string PowerShellCompletion(const std::vector<CommandWord>& commands) {
  std::string script = kHead;
  for (const CommandWord& each : commands) {
    script += "    '" + each.name + "' = @{ Options = " + ListOf(each.options) +
              "; Values = " + ListOf(each.values) + " }\n";
  }
  return script + kTail;
}

}  // namespace kesp::console
