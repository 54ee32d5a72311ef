' Tells by which error a script learns that there is no library of its own width; "PASS" alone where there is one.
Option Explicit
Dim comm
On Error Resume Next
Set comm = CreateObject("KespCommObj.CKespCommObj")
If Err.Number <> 0 Then WScript.Echo "error: " & Err.Number & " " & Err.Description
WScript.Echo "PASS"
