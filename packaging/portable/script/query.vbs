' Not yet run. Asks an instrument on the network who it is, with a library that lies elsewhere and is not registered:
'   cscript //nologo query.vbs host [port]
' Wine has no Microsoft.Windows.ActCtx; Windows has it from Server 2003 on.
Option Explicit
Dim folder, bits, context, comm, reply
Set folder = CreateObject("Scripting.FileSystemObject").GetFile(WScript.ScriptFullName).ParentFolder
bits = "win64"
If CreateObject("WScript.Shell").Environment("Process")("PROCESSOR_ARCHITECTURE") = "x86" Then bits = "win32"
Set context = CreateObject("Microsoft.Windows.ActCtx")
context.Manifest = folder.ParentFolder.ParentFolder.Path & "\" & bits & "\client.manifest"
Set comm = context.CreateObject("KespCommObj.CKespCommObj")
comm.CommStyle = 1
comm.CommObject.IPAddress = WScript.Arguments(0)
If WScript.Arguments.Count > 1 Then comm.CommObject.Port = CInt(WScript.Arguments(1))
If comm.Query(reply, "*IDN?") Then
  WScript.Echo reply
Else
  WScript.Echo comm.CommErrorDescr
  WScript.Quit 1
End If
