// JScript's conversation with the devices of gpib_script_bus.json.
var csIEEE = 2, cfrSuccess = 0, cfrWriteFailed = 2, cfrReadFailed = 3, to100ms = 9, to3s = 12;
var dlSCPIOnly = 1, soFindNext = 1;
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

var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csIEEE;
var ieee = comm.CommObject;
ieee.PrimaryAddress = 4;
ieee.EOSChar = 10;
check("number as text", ieee.EOSChar, "10");

// JScript has no arguments by reference: the reply is lost, and the call succeeds.
check("query", comm.Query("", "*IDN?"), true);
check("status", comm.CommError, cfrSuccess);
check("update", comm.Update("SETP 20"), true);
ieee.TimeOutSecs = to100ms;
check("silence", comm.Query("", "SETP 21"), false);
check("its status", comm.CommError, cfrReadFailed);
check("its description", comm.CommErrorDescr.indexOf("Error: 6 - I/O operation aborted") > 0, true);
ieee.PrimaryAddress = 20;
check("nobody there", comm.Update("SETP 21"), false);
check("status of that", comm.CommError, cfrWriteFailed);

var other = new ActiveXObject("KespCommObj.CKespIEEE");
other.EOSChar = "10";
other.PrimaryAddress = 20;
check("detection", other.AutoDetect(""), true);
check("where", other.PrimaryAddress, 4);
check("further on", other.AutoDetect("", dlSCPIOnly, soFindNext), false);
check("still there", other.PrimaryAddress, 4);
check("time-out", other.TimeOutSecs, to3s);
check("open", other.Initialize(), true);
check("write", other.WriteLine("LOG?"), true);
check("read", other.ReadLine(""), true);
check("write without a command", other.WriteLine(), true);
check("close", other.Uninitialize(), true);
refused("time-out of no time", function () { other.TimeOutSecs = 18; other.Initialize(); }, 0x800400EA - 0x100000000,
        "Error calling ibdev(): Error: 4 - Invalid argument to function call");
refused("nothing to close", function () { other.Uninitialize(); }, 0x800400E9 - 0x100000000, "Invalid device.");
refused("no number", function () { other.EOSChar = "abc"; other.WriteLine("t"); }, 0x800A000D - 0x100000000,
        "Type mismatch (EOSChar is \"abc\"; it must hold the code of a character, such as 10)");

if (failures === 0) WScript.Echo("PASS");
