// Asks an instrument on the network who it is.
//
//   cscript //nologo query_tcp.js [host [port [command]]]
var csTCPIP = 1;
var TemporaryFolder = 2;

var files = new ActiveXObject("Scripting.FileSystemObject");
var cmd = argument(2, "*IDN?");
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csTCPIP;
comm.CommObject.IPAddress = argument(0, "127.0.0.1");
comm.CommObject.Port = parseInt(argument(1, "10001"), 10);
comm.DebugFilename = files.BuildPath(files.GetSpecialFolder(TemporaryFolder), "query_tcp-js.log");
comm.Debugging = true;

// JScript hands over values only. An object with a member "value" gets the reply there.
var reply = { value: "" };
var succeeded = comm.Query(reply, cmd);
WScript.Echo("command:     " + cmd);
if (succeeded) {
  WScript.Echo("reply:       " + reply.value);
} else {
  WScript.Echo("source:      " + comm.CommErrorSource);
  WScript.Echo("description: " + comm.CommErrorDescr);
}
WScript.Echo("status:      " + comm.CommError);
WScript.Echo("trace file:  " + comm.DebugFilename);
if (!succeeded) WScript.Quit(1);

function argument(position, otherwise) {
  return WScript.Arguments.Count() > position ? WScript.Arguments(position) : otherwise;
}
