' Finds the instruments on the network and asks each who it is.
'
'   cscript //nologo discover.vbs
Option Explicit
Const csTCPIP = 1
Const sckUDPProtocol = 1

Dim comm, tcp, result, found, instrument
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
comm.DebugFilename = TraceFile("discover-vbs.log")
comm.Debugging = True
Set tcp = comm.CommObject
' One broadcast to everybody, over UDP; what answers is asked over TCP.
tcp.Protocol = sckUDPProtocol

' AutoDetect raises its error, where DetectInstrument would show a box.
On Error Resume Next
found = tcp.AutoDetect(result)
If Err.Number <> 0 Then
    WScript.Echo "error:       " & Err.Number
    WScript.Echo "source:      " & Err.Source
    WScript.Echo "description: " & Err.Description
    WScript.Quit 2
End If
On Error GoTo 0

For Each instrument In tcp.Devices
    WScript.Echo "instrument:  " & instrument.IPAddress & "  model " & instrument.Model & "  serial " & instrument.Serial
Next
If Not found Then WScript.Echo "nobody answered"
WScript.Echo "trace file:  " & comm.DebugFilename
If Not found Then WScript.Quit 1

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
