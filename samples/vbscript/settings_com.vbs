' Lets the user set the COM port in the library's own dialog, and asks the instrument there who it is.
'
'   cscript //nologo settings_com.vbs [command]
Option Explicit
Const csRS232 = 0
Const ecfShowRS232ExtendedTab = 1
Const br300 = 1
Const br9600 = 6
Const br57600 = 9

Dim comm, port, result, succeeded, cmd
cmd = "*IDN?"
If WScript.Arguments.Count > 0 Then cmd = WScript.Arguments(0)
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csRS232
Set port = comm.CommObject
' The rates that the dialog offers.
port.MaxBaudRate = br57600
port.MinBaudRate = br300
port.BaudRate = br9600
If Not comm.Edit(ecfShowRS232ExtendedTab) Then
    WScript.Echo "cancelled"
    WScript.Quit 1
End If
WScript.Echo "port:        COM" & port.Port
WScript.Echo "bit rate:    " & port.BaudRateName(port.BaudRate)

comm.DebugFilename = TraceFile("settings_com-vbs.log")
comm.Debugging = True
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

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
