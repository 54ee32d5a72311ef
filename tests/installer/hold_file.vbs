' Keeps what is redirected to it open: makes the file of the first argument, and ends when the file of the second
' argument appears.
Option Explicit
Dim files
Set files = CreateObject("Scripting.FileSystemObject")
files.CreateTextFile(WScript.Arguments(0)).Close
Do Until files.FileExists(WScript.Arguments(1))
Loop
WScript.Echo "PASS"
