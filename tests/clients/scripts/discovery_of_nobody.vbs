' VBScript's search where nobody answers: nothing is found, and nothing has moved.
Option Explicit
Const sckUDPProtocol = 1

Dim tcp, result
Set tcp = CreateObject("KespCommObj.CKespTCP")
tcp.Protocol = sckUDPProtocol
tcp.Port = 1234
If tcp.AutoDetect(result) Then WScript.Echo "FAIL: found " & tcp.Devices.Count
If tcp.IPAddress <> "0.0.0.0" Or tcp.Port <> 1234 Then WScript.Echo "FAIL: moved to " & tcp.IPAddress
If tcp.Devices.Count = 0 And tcp.Protocol = sckUDPProtocol Then WScript.Echo "PASS"
