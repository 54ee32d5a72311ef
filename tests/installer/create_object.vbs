' The installed library answers to its name: objects come into being and keep what they are told.
Option Explicit
Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = 1
comm.CommObject.Port = 4711
If comm.CommObject.Port <> 4711 Then WScript.Echo "FAIL: the port is " & comm.CommObject.Port
WScript.Echo "PASS"
