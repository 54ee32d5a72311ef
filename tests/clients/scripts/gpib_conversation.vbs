' A script's conversation with the built-in device of the simulated GPIB driver.
Option Explicit
Const csIEEE = 2, cfrSuccess = 0, cfrWriteFailed = 2, cfrReadFailed = 3, to100ms = 9, dlSCPIOnly = 1, soFindNext = 1
Const kOpening = "[CKespIEEE - InitializeIEEEBoard()]"

Dim failures
failures = 0

' Through the communication object. "+021.48" is read up to the character "1".
Dim comm, ieee, result
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csIEEE
Set ieee = comm.CommObject
ieee.PrimaryAddress = 5
ieee.EOSChar = 10
Check "number as text", ieee.EOSChar, "10"
Check "query", comm.Query(result, "MEAS?"), True
Check "beginning of the reply", result, "+021"
ieee.SetEOS = False
Check "query without an end", comm.Query(result, "SETP?"), True
Check "type", VarType(result), vbString
Check "whole reply", result, "+022.00" & vbLf
Check "update", comm.Update("SETP 20"), True
Check "status", comm.CommError, cfrSuccess
ieee.TimeOutSecs = to100ms
Check "silence", comm.Query(result, "SETP 21"), False
Check "its status", comm.CommError, cfrReadFailed
Check "its source", comm.CommErrorSource, "[CKespIEEE - ReadLine()]"
ieee.PrimaryAddress = 20
Check "nobody there", comm.Update("SETP 21"), False
Check "status of that", comm.CommError, cfrWriteFailed

' The transport alone: looking for a device with the optional arguments and without, a long reply in pieces.
Dim other, reply
Set other = CreateObject("KespCommObj.CKespIEEE")
other.EOSChar = "10"
other.SetEOS = False
other.PrimaryAddress = 20
reply = 5
Check "detection", other.AutoDetect(reply), True
Check "who was found", reply, "KESP,GP488,SIM48805,1.0" & vbLf
Check "where", other.PrimaryAddress, 5
Check "further on", other.AutoDetect(reply, dlSCPIOnly, soFindNext), False
Check "nobody", reply, ""
Check "still there", other.PrimaryAddress, 5
Check "open", other.Initialize, True
Check "write", other.WriteLine("LOG?"), True
Check "first piece", other.ReadLine(reply), True
Check "its length", Len(reply), 50
reply = 5
Check "read into a number", other.ReadLine(reply), True
Check "second piece", Left(reply, 8), "21.47,+0"
Check "write without a command", other.WriteLine, True
Check "close", other.Uninitialize, True

' Errors of each call.
On Error Resume Next
other.EOSChar = ""
other.SetEOS = True
other.AutoDetect reply
CheckError "detection without a character", 5, kOpening, "Invalid procedure call or argument (EOSChar is empty, so no character can end a read; set it, or set SetEOS to False)"
Check "what was found", reply, ""
other.TimeOutSecs = 18
other.Initialize
CheckError "no time", -2147221270, kOpening, "Error calling ibdev(): Error: 4 - Invalid argument to function call"
other.Uninitialize
CheckError "nothing to close", -2147221271, "[CKespIEEE - Uninitialize()]", "Invalid device."
other.EOSChar = "10"
other.WriteLine "t"
CheckError "no device to write to", -2147221267, "[CKespIEEE - WriteLine()]", "Error calling ibwrt() with command 't' on device -1: Error: 0 - System error"
other.ReadLine reply
CheckError "no device to read from", -2147221266, "[CKespIEEE - ReadLine()]", "Error calling ibrd() on device -1: Error: 0 - System error"
other.EOSChar = "abc"
other.WriteLine "t"
CheckError "no number", 13, "[CKespIEEE - WriteLine()]", "Type mismatch (EOSChar is ""abc""; it must hold the code of a character, such as 10)"
On Error GoTo 0

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
