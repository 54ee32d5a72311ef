' Asks an instrument at a COM port who it is.
'
'   cscript //nologo query_com.vbs [COM port number [bits per second [command]]]
Option Explicit
Const csRS232 = 0
Const br150 = 0
Const br921600 = 13

Dim comm, result, succeeded, cmd
cmd = Argument(2, "*IDN?")
Set comm = CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = csRS232
comm.CommObject.Port = CInt(Argument(0, "1"))
SetBaudRate comm.CommObject, Argument(1, "9600")
comm.DebugFilename = TraceFile("query_com-vbs.log")
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

' The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
Sub SetBaudRate(transport, baud)
    Dim rate
    transport.MaxBaudRate = br921600
    transport.MinBaudRate = br150
    For rate = br150 To br921600
        If transport.BaudRateName(rate) = baud Then
            transport.BaudRate = rate
            Exit Sub
        End If
    Next
    WScript.Echo baud & " is not a bit rate of this library"
    WScript.Quit 2
End Sub

Function Argument(position, default)
    Argument = default
    If WScript.Arguments.Count > position Then Argument = WScript.Arguments(position)
End Function

' In the temporary folder: the folder of the library itself may not be writable.
Function TraceFile(name)
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    TraceFile = files.BuildPath(files.GetSpecialFolder(2), name)
End Function
