// Asks an instrument on the network who it is.
//
//   cscript //nologo query_tcp.js [host [port [command]]]
var csTCPIP = 1;
var ForReading = 1;
var TemporaryFolder = 2;

var files = new ActiveXObject("Scripting.FileSystemObject");
var cmd = argument(2, "*IDN?");
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csTCPIP;
comm.CommObject.IPAddress = argument(0, "127.0.0.1");
comm.CommObject.Port = parseInt(argument(1, "10001"), 10);
comm.DebugFilename = files.BuildPath(files.GetSpecialFolder(TemporaryFolder), "query_tcp-js.log");
comm.Debugging = true;

// JScript hands over values only, so the reply does not come back in the first argument: the trace has it.
var succeeded = comm.Query("", cmd);
WScript.Echo("command:     " + cmd);
if (succeeded) {
  WScript.Echo("reply:       " + lastReply(comm.DebugFilename));
} else {
  WScript.Echo("source:      " + comm.CommErrorSource);
  WScript.Echo("description: " + comm.CommErrorDescr);
}
WScript.Echo("status:      " + comm.CommError);
WScript.Echo("trace file:  " + comm.DebugFilename);
if (!succeeded) WScript.Quit(1);

function lastReply(trace) {
  var mark = "result- ";
  var file = files.OpenTextFile(trace, ForReading);
  var text = file.ReadAll();
  file.Close();
  var reply = text.substring(text.lastIndexOf(mark) + mark.length);
  return reply.substring(0, reply.search(/[\r\n]/));
}

function argument(position, otherwise) {
  return WScript.Arguments.Count() > position ? WScript.Arguments(position) : otherwise;
}
