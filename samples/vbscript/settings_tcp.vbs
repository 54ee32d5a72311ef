' Lets the user set the network connection in the library's own dialog, and asks the instrument there who it is.
'
'   cscript //nologo settings_tcp.vbs [command]
Option Explicit
Const csTCPIP = 1
Const sckTCPProtocol = 0
Const sckUDPProtocol = 1
Const ipDynamic = 1
Const ecfShowTCPExtendedTab = 8

Dim comm, tcp, result, succeeded, cmd, instrument
cmd = "*IDN?"
If WScript.Arguments.Count > 0 Then cmd = WScript.Arguments(0)
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csTCPIP
Set tcp = comm.CommObject
tcp.IPAddress = "192.168.0.10"
tcp.Port = 10001
If Not comm.Edit(ecfShowTCPExtendedTab) Then
    WScript.Echo "cancelled"
    WScript.Quit 1
End If

' The dialog only keeps the choice of auto-discovery: the program looks for the instrument.
If tcp.IPType = ipDynamic Then
    tcp.Protocol = sckUDPProtocol
    comm.DetectInstrument result
    tcp.Protocol = sckTCPProtocol
    For Each instrument In tcp.Devices
        tcp.IPAddress = instrument.IPAddress
        Exit For
    Next
End If
WScript.Echo "address:     " & tcp.IPAddress
WScript.Echo "port:        " & tcp.Port

comm.DebugFilename = TraceFile("settings_tcp-vbs.log")
comm.Debugging = True
succeeded = comm.Query(result, cmd)
WScript.Echo "command:     " & cmd
If succeeded Then
    WScript.Echo "reply:       " & result
Else
    WScript.Echo "description: " & comm.CommErrorDescr
End If
WScript.Echo "status:      " & comm.CommError
WScript.Echo "trace file:  " & comm.DebugFilename
If Not succeeded Then WScript.Quit 1

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
