' What a script reads from Err after a refused call: number, source and description.
Option Explicit
Const csNone = -1, csIEEE = 2

Dim failures
failures = 0

Dim comm, port, tcp, ieee, instruments, result
Set comm = CreateObject("KespCommObj.CKespCommObj")
Set port = CreateObject("KespCommObj.CKespCOMPort3")
Set tcp = CreateObject("KespCommObj.CKespTCP.1")
Set ieee = CreateObject("KespCommObj.CKespIEEE")
Set instruments = CreateObject("KespCommObj.CInstruments")

On Error Resume Next

comm.CommStyle = 3
Check "style", -2147221304, "[CKespCommObj - CommStyle]", "The selected communication style is currently not supported"
comm.CommStyle = csNone
Check "no style", 0, "", ""
comm.Query result, "*IDN?"
Check "Query without style", -2147221303, "[CKespCommObj - Query()]", "Communications object not initialized"
comm.QueryBinary result, "*IDN?"
Check "QueryBinary without style", -2147221303, "[CKespCommObj - QueryBinary()]", "Communications object not initialized"
comm.Update "*RST"
Check "Update without style", -2147221303, "[CKespCommObj - Update()]", "Communications object not initialized"
comm.CommStyle = csIEEE
comm.QueryBinary result, "*IDN?"
Check "QueryBinary over IEEE-488", -2147221304, "[CKespCommObj - QueryBinary()]", "The selected communication style is currently not supported"

port.Port = 0
Check "COM port", -2147221284, "CKespCOMPort3 - Port", "Invalid COM port."
port.TimeOut = -1
Check "time-out", -2147221283, "[CKespCOMPort3 - TimeOut]", "Invalid timeout setting."
port.BaudRate = 6
Check "baud rate", -2147221281, "CKespCOMPort3 - BaudRate", "Baud rate not supported."
tcp.Port = 0
Check "TCP port", -2147221263, "[CKespTCP - Port]", "Invalid Port"
tcp.IPAddress = ""
Check "TCP address", -2147221264, "[CKespTCP - IPAddress]", "Invalid IP Address"
tcp.WriteLine "*IDN?"
Check "not connected", -2147221260, "[CKespTCP - WriteLine()]", "Socket not initialized"
ieee.PrimaryAddress = 31
Check "primary address", -2147221274, "[CKespIEEE - PrimaryAddress]", "Invalid primary address."

' The collection's numbers are those that scripts know.
Dim item
Set item = instruments.Item(1)
Check "position", 9, "KespCommObj", "Subscript out of range"
Set item = instruments.Item("key")
Check "key", 5, "KespCommObj", "Invalid procedure call or argument"
Set item = instruments.Item(Null)
Check "type of index", 13, "KespCommObj", "Type mismatch"
Dim one
Set one = CreateObject("KespCommObj.CInstrument")
instruments.AddReference one, "key"
instruments.AddReference one, "KEY"
Check "key in use", 457, "KespCommObj", "This key is already associated with an element of this collection"
instruments.AddReference Nothing
Check "Nothing", 5, "KespCommObj", "Invalid procedure call or argument"

' Mistakes of the script itself.
comm.NoSuchMember
CheckNumber "unknown member", 438
comm.GetKey 1, 2, 3
CheckNumber "too many arguments", 450
port.Parity = "odd"
CheckNumber "text for a number", 13

If failures = 0 Then WScript.Echo "PASS"

Sub Check(what, number, source, description)
    If Err.Number <> number Or Err.Source <> source Or Err.Description <> description Then
        failures = failures + 1
        WScript.Echo "FAIL: " & what & ": " & Err.Number & " / " & Err.Source & " / " & Err.Description
    End If
    Err.Clear
End Sub

Sub CheckNumber(what, number)
    If Err.Number <> number Then
        failures = failures + 1
        WScript.Echo "FAIL: " & what & ": " & Err.Number & " instead of " & number
    End If
    Err.Clear
End Sub
