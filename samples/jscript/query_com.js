// Asks an instrument at a COM port who it is.
//
//   cscript //nologo query_com.js [COM port number [bits per second [command]]]
var csRS232 = 0, br150 = 0, br921600 = 13;
var TemporaryFolder = 2;

var files = new ActiveXObject("Scripting.FileSystemObject");
var cmd = argument(2, "*IDN?");
var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csRS232;
comm.CommObject.Port = parseInt(argument(0, "1"), 10);
setBaudRate(comm.CommObject, argument(1, "9600"));
comm.DebugFilename = files.BuildPath(files.GetSpecialFolder(TemporaryFolder), "query_com-js.log");
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

// The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
function setBaudRate(transport, baud) {
  transport.MaxBaudRate = br921600;
  transport.MinBaudRate = br150;
  var rate = br150;
  while (rate <= br921600 && transport.BaudRateName(rate) !== baud) rate++;
  if (rate > br921600) {
    WScript.Echo(baud + " is not a bit rate of this library");
    WScript.Quit(2);
  }
  transport.BaudRate = rate;
}

function argument(position, otherwise) {
  return WScript.Arguments.Count() > position ? WScript.Arguments(position) : otherwise;
}
