' Keeps the installed library loaded: makes the file of the first argument when it is, and ends when the file of the
' second argument appears.
Option Explicit
Dim comm, files
Set files = CreateObject("Scripting.FileSystemObject")
Set comm = CreateObject("KespCommObj.CKespCommObj")
files.CreateTextFile(WScript.Arguments(0)).Close
Do Until files.FileExists(WScript.Arguments(1))
Loop
WScript.Echo "PASS"
