' Finds the instruments on the network and asks each who it is.
'
'   cscript //nologo discover.vbs
Option Explicit
Const csTCPIP = 1
Const sckUDPProtocol = 1

Dim comm, tcp
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
Set tcp = comm.CommObject
' One broadcast to everybody, over UDP; what answers is asked over TCP.
tcp.Protocol = sckUDPProtocol
comm.DebugFilename = TraceFile()
comm.Debugging = True

Dim result, found, instrument
found = comm.DetectInstrument(result)
If found Then
    For Each instrument In tcp.Devices
        WScript.Echo "instrument:  " & instrument.IPAddress & "  model " & instrument.Model & "  serial " & instrument.Serial
    Next
Else
    WScript.Echo "nobody answered"
End If
WScript.Echo "trace file:  " & comm.DebugFilename
If Not found Then WScript.Quit 1

' A file in the temporary folder: the folder of the library itself may not be writable.
Function TraceFile()
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), "discover-vbs.log")
End Function
