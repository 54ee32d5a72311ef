' VBScript's search for the instruments of three-instruments.json.
Option Explicit
Const sckTCPProtocol = 0
Const sckUDPProtocol = 1

Dim failures
failures = 0

Dim tcp, result, device, found
Set tcp = CreateObject("KespCommObj.CKespTCP")
tcp.Protocol = sckUDPProtocol
result = "before"
Check "discovery", tcp.AutoDetect(result), True
Check "result", result, ""
For Each device In tcp.Devices
    found = found & device.IPAddress & " " & device.Model & " " & device.Serial & ";"
Next
Check "devices", found, "10.88.0.11 7100 NET00011;10.88.0.12 7200 NET00022;10.88.0.13 7300 NET00033;"
Check "protocol", tcp.Protocol, sckUDPProtocol

tcp.Protocol = sckTCPProtocol
tcp.IPAddress = tcp.Devices(3).IPAddress
Check "detection", tcp.AutoDetect(result), True
Check "identity", result, "KESP,7300,NET00033,2.0"
Check "close", tcp.Uninitialize(), True

tcp.IPAddress = "0.0.0.0"
On Error Resume Next
found = tcp.AutoDetect(result)
Check "no address", Err.Number, -2147221264
Check "its text", Err.Description, "Invalid IP Address"
Check "its source", Err.Source, "[CKespTCP - Initialize()]"
On Error GoTo 0
Check "result of that", result, ""

If failures = 0 Then WScript.Echo "PASS"

Sub Check(what, found, expected)
    If found = expected Then Exit Sub
    failures = failures + 1
    WScript.Echo "FAIL: " & what & ": " & found & " instead of " & expected
End Sub
