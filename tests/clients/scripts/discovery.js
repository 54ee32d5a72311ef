// JScript's search for the instruments of three-instruments.json.
var csNone = -1, csTCPIP = 1, cfrSuccess = 0, cfrOtherError = 6;
var sckTCPProtocol = 0, sckUDPProtocol = 1, dlSCPIOnly = 1, imBinary = 1;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

function refused(what, call, number, description) {
  try {
    call();
    check(what, "no error", number);
  } catch (error) {
    check(what, error.number, number);
    check(what + ", text", error.description, description);
  }
}

function found(devices) {
  var texts = [];
  for (var all = new Enumerator(devices); !all.atEnd(); all.moveNext()) {
    texts.push(all.item().IPAddress + " " + all.item().Model + " " + all.item().Serial);
  }
  return texts.join(", ");
}

var three = "10.88.0.11 7100 NET00011, 10.88.0.12 7200 NET00022, 10.88.0.13 7300 NET00033";
var tcp = new ActiveXObject("KespCommObj.CKespTCP");
tcp.Protocol = sckUDPProtocol;
// JScript has no arguments by reference: the answer is lost, and the call succeeds.
check("discovery", tcp.AutoDetect(""), true);
check("devices", found(tcp.Devices), three);
check("protocol", tcp.Protocol, sckUDPProtocol);
check("time-out", tcp.TimeOutmSecs, 3000);
check("address", tcp.IPAddress, "10.88.0.11");

tcp.Protocol = sckTCPProtocol;
tcp.IPAddress = tcp.Devices(2).IPAddress;
check("detection", tcp.AutoDetect("", dlSCPIOnly), true);
check("open", tcp.State, 7);
check("close", tcp.Uninitialize(), true);

var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csTCPIP;
comm.CommObject.IPAddress = "10.88.0.13";
comm.CommObject.Port = 10001;
check("instrument", comm.DetectInstrument(""), true);
check("status", comm.CommError, cfrSuccess);
comm.SetInputMode(imBinary);
check("status after the input mode", comm.CommError, cfrOtherError);
comm.CommStyle = csNone;
refused("no transport", function () { comm.DetectInstrument(""); }, -2147221303,
        "Communications object not initialized");
refused("no transport for the mode", function () { comm.SetInputMode(imBinary); }, -2147221303,
        "Communications object not initialized");

if (failures === 0) WScript.Echo("PASS");
