' Shows the version that a program's resource tells.
Option Explicit
WScript.Echo "version=" & CreateObject("Scripting.FileSystemObject").GetFileVersion(WScript.Arguments(0))
WScript.Echo "PASS"
