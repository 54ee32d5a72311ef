' What a script does with the objects themselves: the collection of instruments, and what it reads from Err.
Option Explicit
Const csNone = -1

Dim failures
failures = 0

Dim instruments, names, item
Set instruments = CreateObject("KespCommObj.CInstruments")
Add "A", ""
Add "B", "bench"
Add "C", "rack"

For Each item In instruments
    names = names & item.Model
Next
Check "For Each", names, "ABC"
Check "default member", instruments(1).Model, "A"
Check "default member by key", instruments("BENCH").Model, "B"
Dim position
position = 2
Check "position in a variable", instruments(position).Model, "B"
Check "same object", instruments(2) Is instruments("bench"), True

' The enumeration goes over what was there when it began.
names = ""
For Each item In instruments
    names = names & item.Model
    If item.Model = "A" Then instruments.Clear
Next
Check "For Each while clearing", names, "ABC"
For Each item In instruments
    names = names & "!"
Next
Check "For Each over nothing", names, "ABC"

Dim tcp, port
Set tcp = CreateObject("KespCommObj.CKespTCP.1")
tcp.Devices.AddReference CreateObject("KespCommObj.CInstrument"), "one"
tcp.Devices("one").Model = "through the transport"
Check "devices of a transport", tcp.Devices(1).Model, "through the transport"
Set port = CreateObject("KespCommObj.CKespCOMPort3")
port.SmartSwitch.Style = 1
Check "port switch", port.SmartSwitch.NumPorts, 8

Dim comm, result
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csNone
On Error Resume Next
comm.Query result, "*IDN?"
CheckError "Query without style", -2147221303, "[CKespCommObj - Query()]", "Communications object not initialized"
tcp.Port = 0
CheckError "TCP port", -2147221263, "[CKespTCP - Port]", "Invalid Port"
' The collection's numbers are those that scripts know.
Set item = instruments.Item(1)
CheckError "position", 9, "KespCommObj", "Subscript out of range"
instruments.AddReference Nothing
CheckError "Nothing", 5, "KespCommObj", "Invalid procedure call or argument"

' Mistakes of the script itself.
comm.NoSuchMember
CheckNumber "unknown member", 438
comm.GetKey 1, 2, 3
CheckNumber "too many arguments", 450
port.Parity = "odd"
CheckNumber "text for a number", 13

If failures = 0 Then WScript.Echo "PASS"

Sub Add(model, key)
    Dim one
    Set one = CreateObject("KespCommObj.CInstrument")
    one.Model = model
    instruments.AddReference one, key
End Sub

Sub Check(what, found, expected)
    If found = expected Then Exit Sub
    failures = failures + 1
    WScript.Echo "FAIL: " & what & ": " & found & " instead of " & expected
End Sub

Sub CheckNumber(what, number)
    Check what, Err.Number, number
    Err.Clear
End Sub

Sub CheckError(what, number, source, description)
    Check what, Err.Number & " / " & Err.Source & " / " & Err.Description, number & " / " & source & " / " & description
    Err.Clear
End Sub
