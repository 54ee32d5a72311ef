' A script's conversation with the instrument on the COM port of that number.
Option Explicit
Const br300 = 1, br9600 = 6, br57600 = 9, csRS232 = 0, cfrSuccess = 0, cfrTimeout = 4, imText = 0, imBinary = 1

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
Check "settings", port.GetSettings, "9600,N,8,1"
Check "port exists", port.PortExists(number), True
Check "port is available", port.IsPortAvailable(number), True

' The instrument ends its replies with a carriage return alone: without a redirector, that takes the time-out.
Dim result
Check "query", comm.Query(result, "*IDN?"), True
Check "reply", result, "KESP,7100,SIM00001,1.0"
port.UseRedirector = True
Check "query with a redirector", comm.Query(result, "t"), True
Check "its reply", result, "21.5"
Check "status", comm.CommError, cfrSuccess
Check "update", comm.Update("SETP 20"), True
Check "closed again", port.IsPortAvailable(number), True

' Text behind the text in the variable, and bytes.
Dim bytes
Check "text", comm.QueryBinary(bytes, "*VER"), True
Check "its type", VarType(bytes), vbString
Check "its characters", bytes, "1.0" & vbCr
port.SetInputMode imBinary
Check "bytes", comm.QueryBinary(bytes, "*VER"), True
Check "their type", VarType(bytes), vbArray + vbByte
port.SetInputMode imText

' A command without an answer.
Check "silence", comm.Query(result, "SETP 21"), False
Check "its status", comm.CommError, cfrTimeout
Check "its source", comm.CommErrorSource, "CKespCOMPort3 - ReadLine()"
Check "its description", comm.CommErrorDescr, "Timeout waiting for instrument to respond to command on COM" & number & "."

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
Check "read", other.ReadLine(reply), True
Check "type of the line", VarType(reply), vbString
Check "line", reply, "21.48"
reply = 5
other.WriteLine "MEAS?"
Check "read into a number", other.ReadLine(reply), True
Check "next line", reply, "21.50"
other.ClosePort
Check "available", port.IsPortAvailable(number), True
reply = Empty
Check "detection", other.AutoDetect(reply), True
Check "who was found", reply, "KESP,7100,SIM00001,1.0"

On Error Resume Next
other.WriteLine "t"
CheckError "closed port", 8018, "CKespCOMPort3 - WriteLine() [commCOMControl]", "Operation valid only when the port is open"
other.Port = 250
other.OpenPort
CheckError "missing port", 8002, "CKespCOMPort3 - OpenPort() [commCOMControl]", "Invalid port number"

If failures = 0 Then WScript.Echo "PASS"

Sub Check(what, found, expected)
    If VarType(found) = VarType(expected) Or IsNumeric(found) Then
        If found = expected Then Exit Sub
    End If
    failures = failures + 1
    WScript.Echo "FAIL: " & what & ": " & found & " instead of " & expected
End Sub

Sub CheckError(what, number, source, description)
    If Err.Number <> number Or Err.Source <> source Or Err.Description <> description Then
        failures = failures + 1
        WScript.Echo "FAIL: " & what & ": " & Err.Number & " / " & Err.Source & " / " & Err.Description
    End If
    Err.Clear
End Sub
