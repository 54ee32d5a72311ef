' A script's conversation with the instrument on the COM port of that number.
Option Explicit
Const br300 = 1, br9600 = 6, br57600 = 9, csRS232 = 0, cfrSuccess = 0, cfrTimeout = 4, imBinary = 1

Dim failures, number
failures = 0
number = CInt(WScript.Arguments(0))

Dim comm, port
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csRS232
Set port = comm.CommObject
port.Port = number
port.BaudRate = br9600
port.TimeOut = 300

' The instrument ends its replies with a carriage return alone: without a redirector, that takes the time-out.
Dim result, bytes
Check "query", comm.Query(result, "*IDN?"), True
Check "reply", result, "KESP,7100,SIM00001,1.0"
Check "status", comm.CommError, cfrSuccess
Check "text", comm.QueryBinary(bytes, "*VER"), True
Check "its characters", bytes, "1.0" & vbCr
port.SetInputMode imBinary
Check "bytes", comm.QueryBinary(bytes, "*VER"), True
Check "their type", VarType(bytes), vbArray + vbByte
Check "silence", comm.Query(result, "SETP 21"), False
Check "its status", comm.CommError, cfrTimeout
Check "its source", comm.CommErrorSource, "CKespCOMPort3 - ReadLine()"

' The transport alone, whose optional arguments are left out.
Dim other, reply
Set other = CreateObject("KespCommObj.CKespCOMPort3")
other.Port = number
other.MaxBaudRate = br57600
other.MinBaudRate = br300
other.BaudRate = br9600
other.TimeOut = 300
other.UseRedirector = True
Check "open", other.OpenPort, True
Check "not available", port.IsPortAvailable(number), False
Check "write", other.WriteLine("MEAS?"), True
reply = 5
Check "read into a number", other.ReadLine(reply), True
Check "type of the line", VarType(reply), vbString
Check "line", reply, "21.48"
other.ClosePort
reply = Empty
Check "detection", other.AutoDetect(reply), True
Check "who was found", reply, "KESP,7100,SIM00001,1.0"

On Error Resume Next
other.WriteLine "t"
Check "closed port", Err.Number, 8018
Check "its source", Err.Source, "CKespCOMPort3 - WriteLine() [commCOMControl]"
Check "its text", Err.Description, "Operation valid only when the port is open"

If failures = 0 Then WScript.Echo "PASS"

Sub Check(what, found, expected)
    If VarType(found) = VarType(expected) Or IsNumeric(found) Then
        If found = expected Then Exit Sub
    End If
    failures = failures + 1
    WScript.Echo "FAIL: " & what & ": " & found & " instead of " & expected
End Sub
