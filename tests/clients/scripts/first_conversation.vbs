' A script's first conversation: Query, QueryBinary and Update on the instrument at host and port.
Option Explicit
Const csNone = -1, csTCPIP = 1, cfrSuccess = 0, cfrInvalidIPAddress = 11

Dim failures
failures = 0

Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
Dim tcp
Set tcp = comm.CommObject
tcp.IPAddress = WScript.Arguments(0)
tcp.Port = CInt(WScript.Arguments(1))

' The result arrives in a variable that was never given a value, and in one that holds anything.
Dim result
Check "uninitialised", comm.Query(result, "*IDN?"), True
Check "type of the reply", VarType(result), vbString
Check "reply", result, "KESP,TORTURE,SIM00666,1.0"
result = 5
comm.Query result, "ECHO a"
Check "after a number", result, "ECHO a"
Set result = comm
Check "after an object", comm.Query(result, "ECHO b"), True
Check "reply after an object", result, "ECHO b"
Dim row(2)
result = row
comm.Query result, "ECHO c"
Check "after an array", result, "ECHO c"
result = Null
comm.Query result, "ECHO d"
Check "after Null", result, "ECHO d"
Set result = Nothing
comm.Query result, "ECHO e", "01", "2.5"
Check "after Nothing, with all arguments", result, "ECHO e"
Check "success", comm.CommError, cfrSuccess

' A parenthesis makes a value of the variable: the reply is lost, and nothing else happens.
result = "kept"
Check "by value", comm.Query((result), "ECHO f"), True
Check "value kept", result, "kept"

' Wine's VBScript neither measures nor indexes arrays of bytes, so they are looked at as text: two bytes a character.
Dim bytes, other
Check "bytes", comm.QueryBinary(bytes, "ECHO gh"), True
Check "type of the bytes", VarType(bytes), vbArray + vbByte
Check "number of bytes", Len(CStr(bytes)) * 2, 8
comm.QueryBinary other, "ECHO gh"
Check "same bytes", CStr(bytes) = CStr(other), True
comm.QueryBinary other, "ECHO hg"
Check "other bytes", CStr(bytes) = CStr(other), False
Check "bytes again", comm.QueryBinary(bytes, "ECHO longer"), True
Check "number of bytes again", Len(CStr(bytes)) * 2, 12
Check "text after bytes", comm.Query(bytes, "ECHO h"), True
Check "type of the text", VarType(bytes), vbString

Check "update", comm.Update("SETP 20"), True

' A failure is told by the status, not by an error.
tcp.IPAddress = "0.0.0.0"
Check "no address", comm.Query(result, "*IDN?"), False
Check "status", comm.CommError, cfrInvalidIPAddress
Check "source", comm.CommErrorSource, "[CKespTCP - Initialize()]"
Check "description", comm.CommErrorDescr, "Invalid IP Address"
Check "reply kept", result, "kept"

comm.CommStyle = csNone
Check "no transport", comm.CommObject Is Nothing, True

If failures = 0 Then WScript.Echo "PASS"

Sub Check(what, found, expected)
    If VarType(found) = VarType(expected) Or IsNumeric(found) Then
        If found = expected Then Exit Sub
    End If
    failures = failures + 1
    WScript.Echo "FAIL: " & what & ": " & found & " instead of " & expected
End Sub
