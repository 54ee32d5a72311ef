' Lets the user set the connection in the library's own dialog, and asks the instrument that it leads to who it is.
'
'   cscript //nologo settings.vbs [tcp|serial [command]]
Option Explicit
Const csRS232 = 0
Const csTCPIP = 1
Const sckTCPProtocol = 0
Const sckUDPProtocol = 1
Const ipDynamic = 1
Const ecfShowRS232ExtendedTab = 1
Const ecfShowTCPExtendedTab = 8
Const br300 = 1
Const br9600 = 6
Const br57600 = 9

Dim transport, cmd
transport = LCase(Argument(0, "tcp"))
cmd = Argument(1, "*IDN?")

Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
Select Case transport
    Case "tcp"
        comm.CommStyle = csTCPIP
        comm.CommObject.IPAddress = "192.168.0.10"
        comm.CommObject.Port = 10001
    Case "serial"
        comm.CommStyle = csRS232
        ' The rates that the dialog offers.
        comm.CommObject.MaxBaudRate = br57600
        comm.CommObject.MinBaudRate = br300
        comm.CommObject.BaudRate = br9600
    Case Else
        WScript.Echo "tcp or serial, not " & transport
        WScript.Quit 2
End Select

If Not comm.Edit(ecfShowRS232ExtendedTab Or ecfShowTCPExtendedTab) Then
    WScript.Echo "cancelled"
    WScript.Quit 1
End If
If transport = "tcp" Then
    If comm.CommObject.IPType = ipDynamic Then TakeFirstFound
End If
With comm.CommObject
    If transport = "tcp" Then
        WScript.Echo "address:     " & .IPAddress
        WScript.Echo "port:        " & .Port
    Else
        WScript.Echo "port:        COM" & .Port
        WScript.Echo "bit rate:    " & .BaudRateName(.BaudRate)
    End If
End With

comm.DebugFilename = TraceFile()
comm.Debugging = True
Dim result, succeeded
succeeded = comm.Query(result, cmd)
WScript.Echo "command:     " & cmd
If succeeded Then
    WScript.Echo "reply:       " & result
Else
    WScript.Echo "source:      " & comm.CommErrorSource
    WScript.Echo "description: " & comm.CommErrorDescr
End If
WScript.Echo "status:      " & comm.CommError
WScript.Echo "trace file:  " & comm.DebugFilename
If Not succeeded Then WScript.Quit 1

' The library only keeps the choice of auto-discovery: to look for the instrument is up to the program.
Sub TakeFirstFound
    Dim tcp, answer, found, instrument
    Set tcp = comm.CommObject
    tcp.Protocol = sckUDPProtocol
    found = comm.DetectInstrument(answer)
    tcp.Protocol = sckTCPProtocol
    If Not found Then
        WScript.Echo "nobody answered"
        WScript.Quit 1
    End If
    For Each instrument In tcp.Devices
        tcp.IPAddress = instrument.IPAddress
        Exit For
    Next
End Sub

Function Argument(position, default)
    Argument = default
    If WScript.Arguments.Count > position Then Argument = WScript.Arguments(position)
End Function

' A file in the temporary folder: the folder of the library itself may not be writable.
Function TraceFile()
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), "settings-vbs.log")
End Function
