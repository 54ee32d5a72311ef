' The collection of instruments in VBScript: For Each, the default member, keys.
Option Explicit

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
Check "Count", instruments.Count, 3
Check "default member", instruments(1).Model, "A"
Check "default member by key", instruments("BENCH").Model, "B"
Check "Item", instruments.Item(3).Model, "C"
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
Check "cleared", instruments.Count, 0
For Each item In instruments
    names = names & "!"
Next
Check "For Each over nothing", names, "ABC"

Add "D", "d"
instruments.Remove "D"
Check "removed by key", instruments.Count, 0

Dim tcp
Set tcp = CreateObject("KespCommObj.CKespTCP")
tcp.Devices.AddReference CreateObject("KespCommObj.CInstrument"), "one"
tcp.Devices("one").Model = "through the transport"
Check "devices of a transport", tcp.Devices(1).Model, "through the transport"

Dim port
Set port = CreateObject("KespCommObj.CKespCOMPort3")
port.SmartSwitch.Style = 1
Check "port switch", port.SmartSwitch.NumPorts, 8

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
