' A script's conversation with the devices of gpib_script_bus.json.
Option Explicit
Const csIEEE = 2, cfrSuccess = 0, cfrWriteFailed = 2, cfrReadFailed = 3, cfrInitializeFailed = 10
Const to100ms = 9, to3s = 12, dlSCPIOnly = 1, soFindNext = 1
Const ERR_INVALID_PRIMARY_ADDRESS = -2147221274, ERR_INVALID_DEVICE = -2147221271, ERR_IBDEV = -2147221270
Const ERR_IBWRT = -2147221267, ERR_IBRD = -2147221266

Dim failures
failures = 0

Dim comm, ieee
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csIEEE
Set ieee = comm.CommObject
ieee.PrimaryAddress = 4
ieee.EOSChar = 10
Check "number as text", ieee.EOSChar, "10"

Dim result
Check "query", comm.Query(result, "*IDN?"), True
Check "type", VarType(result), vbString
Check "reply", result, "KESP,GP488,SIM48804,2.0" & vbLf
Check "status", comm.CommError, cfrSuccess
Check "update", comm.Update("SETP 20"), True
Check "read ends at the character 1", comm.Query(result, "MODEL?"), True
Check "beginning of the reply", result, "KESP,71"
ieee.SetEOS = False
Check "query without it", comm.Query(result, "MODEL?"), True
Check "whole reply", result, "KESP,7100" & vbLf

' The transport alone: a long reply in pieces, events without a handler.
Dim other, reply
Set other = CreateObject("KespCommObj.CKespIEEE")
other.PrimaryAddress = 4
other.EOSChar = "10"
other.SetEOS = False
Check "open", other.Initialize, True
Check "write", other.WriteLine("LOG?"), True
Check "first piece", other.ReadLine(reply), True
Check "its length", Len(reply), 50
reply = 5
Check "read into a number", other.ReadLine(reply), True
Check "second piece", reply, "27.47,+028.48,+029.50" & vbLf
other.WriteLine
Check "close", other.Uninitialize, True

' Looking for a device, with the optional arguments and without.
other.PrimaryAddress = 20
reply = 5
Check "detection", other.AutoDetect(reply), True
Check "type of the answer", VarType(reply), vbString
Check "who was found", reply, "KESP,GP488,SIM48804,2.0" & vbLf
Check "where", other.PrimaryAddress, 4
Check "time-out", other.TimeOutSecs, to3s
Check "further on", other.AutoDetect(reply, dlSCPIOnly, soFindNext), False
Check "nobody", reply, ""
Check "still there", other.PrimaryAddress, 4

' A secondary address.
other.PrimaryAddress = 9
other.SecondaryAddress = 3
other.TimeOutSecs = to100ms
Check "open behind", other.Initialize, True
Check "ask behind", other.WriteLine("MEAS?"), True
Check "answer behind", other.ReadLine(reply), True
Check "its text", reply, "+020.48" & vbLf

' Errors.
On Error Resume Next
other.ReadLine reply
CheckError "silence", ERR_IBRD, "[CKespIEEE - ReadLine()]", "Error calling ibrd() on device " & Device(Err.Description) & ": Error: 6 - I/O operation aborted"
other.SecondaryAddress = 0
other.Initialize
other.WriteLine "t"
CheckError "nobody there", ERR_IBWRT, "[CKespIEEE - WriteLine()]", "Error calling ibwrt() with command 't' on device " & Device(Err.Description) & ": Error: 2 - Write function detected no listeners"
other.EOSChar = "abc"
other.WriteLine "t"
CheckError "no number", 13, "[CKespIEEE - WriteLine()]", "Type mismatch (EOSChar is ""abc""; it must hold the code of a character, such as 10)"
other.EOSChar = ""
other.SetEOS = True
other.Initialize
CheckError "no character", 5, "[CKespIEEE - InitializeIEEEBoard()]", "Invalid procedure call or argument (EOSChar is empty, so no character can end a read; set it, or set SetEOS to False)"
other.TimeOutSecs = 18
other.Initialize
CheckError "no time-out", ERR_IBDEV, "[CKespIEEE - InitializeIEEEBoard()]", "Error calling ibdev(): Error: 4 - Invalid argument to function call"
other.Uninitialize
CheckError "nothing to close", ERR_INVALID_DEVICE, "[CKespIEEE - Uninitialize()]", "Invalid device."
other.PrimaryAddress = 31
CheckError "address", ERR_INVALID_PRIMARY_ADDRESS, "[CKespIEEE - PrimaryAddress]", "Invalid primary address."
On Error GoTo 0

' The same inside a query is a status.
ieee.TimeOutSecs = to100ms
Check "silence", comm.Query(result, "SETP 21"), False
Check "its status", comm.CommError, cfrReadFailed
Check "its source", comm.CommErrorSource, "[CKespIEEE - ReadLine()]"
ieee.PrimaryAddress = 20
Check "nobody there", comm.Update("SETP 21"), False
Check "status of that", comm.CommError, cfrWriteFailed
ieee.TimeOutSecs = 18
Check "no such time-out", comm.Query(result, "*IDN?"), False
Check "status of this", comm.CommError, cfrInitializeFailed

If failures = 0 Then WScript.Echo "PASS"

' The driver's descriptor, as a description names it.
Function Device(description)
    Dim place
    place = InStr(description, "on device ") + Len("on device ")
    Device = Mid(description, place, InStr(place, description, ":") - place)
End Function

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
