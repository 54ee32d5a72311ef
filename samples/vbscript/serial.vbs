' Asks an instrument at a COM port who it is.
'
'   cscript //nologo serial.vbs [COM port number [bits per second [command]]]
Option Explicit
Const csRS232 = 0
Const br150 = 0
Const br921600 = 13

Dim port, baud, cmd
port = CInt(Argument(0, "1"))
baud = Argument(1, "9600")
cmd = Argument(2, "*IDN?")

Dim comm
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csRS232
comm.CommObject.Port = port
SetBaudRate comm.CommObject, baud
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

Function Argument(position, default)
    Argument = default
    If WScript.Arguments.Count > position Then Argument = WScript.Arguments(position)
End Function

' The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
Sub SetBaudRate(transport, baud)
    transport.MaxBaudRate = br921600
    transport.MinBaudRate = br150
    Dim rate
    For rate = br150 To br921600
        If transport.BaudRateName(rate) = baud Then
            transport.BaudRate = rate
            Exit Sub
        End If
    Next
    WScript.Echo baud & " is not a bit rate of this library"
    WScript.Quit 2
End Sub

' A file in the temporary folder: the folder of the library itself may not be writable.
Function TraceFile()
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), "serial-vbs.log")
End Function
