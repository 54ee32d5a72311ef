' What VBScript can do with the library: the cases of the client matrix, with the instrument at host and port.
Option Explicit
Const csNone = -1, csTCPIP = 1, sckUDPProtocol = 1, cfrSuccess = 0, cfrInvalidIPAddress = 11
Const kIdentity = "KESP,TORTURE,SIM00666,1.0"
' What becomes of E_NOTIMPL.
Const kNotImplemented = 445
Const kNoEvents = "the script host connects no events (WScript.ConnectObject fails)"

' What the handlers heard, and what they are to do.
Dim heard, updates, stopping
Dim failure, reason

' A case that stops at an error comes back here, with the error in Err.
On Error Resume Next
ShowCreation
Report "creation"
ShowSettings
Report "settings"
ShowQuery
Report "query"
ShowBytes
Report "bytes"
ShowError
Report "error"
ShowEvents
Report "events"
ShowAbort
Report "abort"
ShowCollection
Report "collection"
ShowEnumerations
Report "enumerations"
ShowOptional
Report "optional"
reason = "VBScript has no named arguments"
Report "named"
ShowObjects
Report "objects"
WScript.Echo "DONE"

Sub ShowCreation
    Dim class_name, objects(5), count
    For Each class_name In Array("CKespCommObj", "CKespTCP", "CKespCOMPort3", "CKespIEEE", "CInstrument", "CInstruments")
        Set objects(count) = CreateObject("KespCommObj." & class_name)
        count = count + 1
    Next
    Check "keys of ten digits and K", Len(objects(0).GetKey), 11
    Check "the same key", objects(0).GetKey = CreateObject("KespCommObj.CKespCommObj").GetKey, False
    On Error Resume Next
    CreateObject "KespCommObj.CKespSmartSwitch3"
    CheckNumber "a class that clients do not make", 429
End Sub

Sub ShowSettings
    Dim comm
    Set comm = Connected()
    Check "CommStyle", comm.CommStyle, csTCPIP
    Check "IPAddress", comm.CommObject.IPAddress, WScript.Arguments(0)
    Check "Port", comm.CommObject.Port, CInt(WScript.Arguments(1))
    comm.CommObject.TerminateOnEOS = False
    Check "TerminateOnEOS", comm.CommObject.TerminateOnEOS, False
    comm.CommObject.TerminateOnEOS = True
    Check "TerminateOnEOS again", comm.CommObject.TerminateOnEOS, True
    comm.BinaryTimeoutms = 70000
    Check "BinaryTimeoutms", comm.BinaryTimeoutms, 70000
End Sub

Sub ShowQuery
    Dim comm, result
    Set comm = Connected()
    Check "Query", comm.Query(result, "*IDN?"), True
    Check "its reply", result, kIdentity
    Check "its status", comm.CommError, cfrSuccess
    comm.CommObject.IPAddress = "0.0.0.0"
    Check "Query of nobody", comm.Query(result, "*IDN?"), False
    Check "its text", comm.CommErrorDescr, "Invalid IP Address"
End Sub

' Wine's VBScript neither measures nor indexes arrays of bytes. As a text they are two bytes a character, and in a file
' they are bytes again, behind the two of its mark.
Sub ShowBytes
    Dim result, files, place, file, found, expected, code
    Check "QueryBinary", Connected().QueryBinary(result, "ALLBYTES?"), True
    Check "type", VarType(result), vbArray + vbByte
    Set files = CreateObject("Scripting.FileSystemObject")
    place = files.BuildPath(files.GetSpecialFolder(2), files.GetTempName())
    Set file = files.CreateTextFile(place, True, True)
    file.Write CStr(result)
    file.Close
    Set file = files.OpenTextFile(place)
    found = file.ReadAll
    file.Close
    files.DeleteFile place
    For code = 0 To 255
        If code <> 13 Then expected = expected & Chr(code)
    Next
    Check "number", Len(found), 2 + 256
    Check "bytes", Mid(found, 3) = expected & vbCr, True
End Sub

Sub ShowError
    Dim tcp
    Set tcp = CreateObject("KespCommObj.CKespTCP")
    tcp.Port = 7
    On Error Resume Next
    tcp.Port = 0
    Check "source", Err.Source, "[CKespTCP - Port]"
    Check "text", Err.Description, "Invalid Port"
    CheckNumber "number", -2147221263
    Check "Port", tcp.Port, 7
End Sub

Sub ShowEvents
    Dim tcp, result
    Set tcp = Watched()
    If tcp Is Nothing Then Exit Sub
    Check "AutoDetect", tcp.AutoDetect(result), True
    Check "answer", result, kIdentity
    Check "events", heard, "begin *IDN? " & WScript.Arguments(0) & " " & WScript.Arguments(1) & " False end "
    tcp.Uninitialize
End Sub

Sub ShowAbort
    Dim tcp, result
    Set tcp = Watched()
    If tcp Is Nothing Then Exit Sub
    stopping = True
    result = "before"
    Check "AutoDetect", tcp.AutoDetect(result), False
    Check "answer", result, ""
    Check "updates", updates, 1
    Check "end", Right(heard, 4), "end "
    tcp.Uninitialize
End Sub

' Nothing, with the reason, where the script host has no events.
Function Watched
    Set Watched = CreateObject("KespCommObj.CKespTCP")
    Watched.IPAddress = WScript.Arguments(0)
    Watched.Port = CInt(WScript.Arguments(1))
    heard = ""
    updates = 0
    stopping = False
    On Error Resume Next
    WScript.ConnectObject Watched, "tcp_"
    If Err.Number = 0 Then Exit Function
    CheckNumber "ConnectObject", kNotImplemented
    reason = kNoEvents
    Set Watched = Nothing
End Function

Sub tcp_AutoDetectBegin
    heard = heard & "begin "
End Sub

Sub tcp_AutoDetectUpdate(cmd, IPAddress, Port, Abort)
    heard = heard & cmd & " " & IPAddress & " " & Port & " " & CBool(Abort) & " "
    updates = updates + 1
    Abort = stopping
End Sub

Sub tcp_AutoDetectEnd
    heard = heard & "end "
End Sub

Sub ShowCollection
    Dim instruments, model, instrument, found
    Set instruments = CreateObject("KespCommObj.CInstruments")
    For Each model In Array("A", "B")
        Set instrument = CreateObject("KespCommObj.CInstrument")
        instrument.Model = model
        If model = "A" Then instruments.AddReference instrument Else instruments.AddReference instrument, "rack"
    Next
    Check "Count", instruments.Count, 2
    Check "Item(1)", instruments.Item(1).Model, "A"
    Check "Item by key", instruments.Item("rack").Model, "B"
    Check "default member", instruments("RACK").Model, "B"
    For Each instrument In instruments
        found = found & instrument.Model
    Next
    Check "For Each", found, "AB"
    instruments.Remove 1
    Check "Remove", instruments.Item(1).Model, "B"
    On Error Resume Next
    Set instrument = instruments.Item(9)
    CheckNumber "a wrong position", 9
End Sub

Sub ShowEnumerations
    Dim comm, tcp, result
    Set comm = CreateObject("KespCommObj.CKespCommObj")
    comm.CommStyle = csNone
    Check "csNone", comm.CommStyle, -1
    Check "no transport", comm.CommObject Is Nothing, True
    comm.CommStyle = csTCPIP
    Check "csTCPIP", comm.CommStyle, 1
    Set tcp = comm.CommObject
    tcp.Protocol = sckUDPProtocol
    Check "sckUDPProtocol", tcp.Protocol, 1
    tcp.Protocol = 0
    comm.Query result, "*IDN?"
    Check "cfrInvalidIPAddress", comm.CommError, cfrInvalidIPAddress
    On Error Resume Next
    comm.CommStyle = 7
    CheckNumber "a style that there is not", -2147221304
    Check "the style before", comm.CommStyle, csTCPIP
End Sub

Sub ShowOptional
    Dim comm, tcp, result, instruments
    Set comm = Connected()
    Check "Query with two", comm.Query(result, "ECHO a"), True
    Check "its reply", result, "ECHO a"
    Check "Query with four", comm.Query(result, "ECHO b", "01", "2.5"), True
    Check "its reply too", result, "ECHO b"
    Set instruments = CreateObject("KespCommObj.CInstruments")
    instruments.AddReference CreateObject("KespCommObj.CInstrument")
    Check "AddReference without a key", instruments.Count, 1
    Set tcp = comm.CommObject
    tcp.Initialize
    Check "WriteLine without anything", tcp.WriteLine(), True
    tcp.Uninitialize
End Sub

Sub ShowObjects
    Dim comm, count, result
    For count = 1 To 1000
        Set comm = CreateObject("KespCommObj.CKespCommObj")
        comm.CommStyle = csTCPIP
        Set comm = Nothing
    Next
    Check "Query", Connected().Query(result, "*IDN?"), True
    Check "its reply", result, kIdentity
End Sub

Function Connected
    Set Connected = CreateObject("KespCommObj.CKespCommObj")
    Connected.CommStyle = csTCPIP
    Connected.CommObject.IPAddress = WScript.Arguments(0)
    Connected.CommObject.Port = CInt(WScript.Arguments(1))
End Function

' Nothing at all would equal False, "" and 0, and what is Null differs from nothing.
Sub Check(what, found, expected)
    Dim same
    If VarType(expected) = vbBoolean Or VarType(expected) = vbString Then
        same = VarType(found) = VarType(expected)
    Else
        same = IsNumeric(found) And Not IsEmpty(found)
    End If
    If same Then same = found = expected
    If Not same And failure = "" Then failure = what & ": " & found & " instead of " & expected
End Sub

' Takes the error away.
Sub CheckNumber(what, number)
    Check what, Err.Number, number
    Err.Clear
End Sub

Sub Report(name)
    If Err.Number <> 0 And failure = "" Then failure = "error " & Err.Number & ", " & Err.Description
    If failure <> "" Then
        WScript.Echo "FAIL " & name & ": " & failure
    ElseIf reason <> "" Then
        WScript.Echo "SKIP " & name & ": " & reason
    Else
        WScript.Echo "PASS " & name
    End If
    Err.Clear
    failure = ""
    reason = ""
End Sub
