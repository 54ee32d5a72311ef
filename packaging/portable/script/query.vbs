' Not yet run. Asks an instrument on the network who it is, with a library that lies elsewhere and is not registered:
'   cscript //nologo query.vbs host [port]
' Wine has no Microsoft.Windows.ActCtx; Windows has it from Server 2003 on.
Option Explicit
Dim files, folder, bits, context, comm, reply
Set files = CreateObject("Scripting.FileSystemObject")
folder = files.GetAbsolutePathName(files.GetParentFolderName(WScript.ScriptFullName) & "\..\..")
bits = ""
Select Case CreateObject("WScript.Shell").Environment("Process")("PROCESSOR_ARCHITECTURE")
  Case "AMD64": bits = "win64"
  Case "x86": bits = "win32"
End Select
If bits = "" Then
  WScript.Echo "No library for this script host's processor. Use C:\Windows\SysWOW64\cscript.exe, a 32-bit one."
  WScript.Quit 2
End If
Set context = CreateObject("Microsoft.Windows.ActCtx")
context.Manifest = folder & "\" & bits & "\client.manifest"
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
